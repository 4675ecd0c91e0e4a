# Sources that define operations of Editor or speak to the screen library. Everything else in the folders
# is a tool and is linked without it.
set(ROOM_SOURCES
    core/clipboard.cpp
    core/dispatch.cpp
    core/editor.cpp
    core/edits.cpp
    core/key_debug.cpp
    core/loop.cpp
    core/movement.cpp
    core/selection.cpp
    core/session_check.cpp
    core/undo.cpp
    customise/key_reader.cpp
    customise/syntax_colours.cpp
    customise/syntax_state.cpp
    documents/open_save.cpp
    screen/browser.cpp
    screen/char_picker.cpp
    screen/curses.cpp
    screen/drawing.cpp
    screen/geometry.cpp
    screen/help.cpp
    screen/overlay.cpp
    screen/painter.cpp
    screen/prompts.cpp
    screen/screen_map.cpp
    screen/status_bar.cpp
    structure/chapter_swap.cpp
    structure/find.cpp
    structure/folding.cpp
    structure/line_filter.cpp
    structure/replace.cpp
    terminal/leave.cpp
    terminal/view_toggles.cpp
    terminal/zoom.cpp)
list(TRANSFORM ROOM_SOURCES PREPEND ${CMAKE_SOURCE_DIR}/)
