#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace brenlow {

// Hands the text (UTF-8) to the first clipboard tool that takes it; false when none did.
bool _clipboard_copy(std::string_view text, const std::string& search_path = {});

// The clipboard's bytes from the first tool that gives any; nothing when none did.
std::optional<std::string> _clipboard_paste(const std::string& search_path = {},
                                            std::chrono::milliseconds time_limit = std::chrono::seconds(2));

}  // namespace brenlow
