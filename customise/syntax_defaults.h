#pragma once

#include <string_view>

namespace brenlow {

// The default rule file of an extension without its dot; empty where there is none.
std::string_view default_syntax_config(std::string_view ext);

}  // namespace brenlow
