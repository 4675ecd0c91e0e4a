#!/usr/bin/env bash
# Draws docs/pictures/map.svg from the tree: the folders with their rooms, tools and libraries.
# With --check it only says whether the picture is still true.
set -euo pipefail
cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.."

folders=(core screen documents customise structure terminal)
declare -A subject=(
  [core]='the session, the document' [screen]='everything drawn' [documents]='reading and writing files'
  [customise]='settings, keys, colours' [structure]='chapters and search' [terminal]='the terminal around it'
)
# What a source includes, to the library that this tells.
libraries=('<ncurses.h>|<curses.h>=ncursesw' '<zip.h>=libzip' '<libxml/=libxml2' '<pcre2.h>=PCRE2' '<zlib.h>=zlib'
  '<nlohmann/=nlohmann-json')
column=168 gap=12 row=15 head=46 edge=14

is_room() { grep -qx "    $1)\\?" cmake/rooms.cmake; }

# The sources of a folder without their endings, and headers that stand alone: "room" or "tool", then the name.
files_of() { # folder
  local file name
  for file in "$1"/*.cpp "$1"/*.h; do
    name=${file##*/}
    [[ $name == *.h && -f ${file%.h}.cpp ]] && continue
    if [[ $name == editor.h ]]; then continue; fi
    if is_room "$file"; then echo "room ${name%.*}"; else echo "tool ${name%.*}"; fi
  done | sort -u
}

libraries_of() { # folder
  local entry
  for entry in "${libraries[@]}"; do
    if grep -qE "#include (${entry%=*})" "$1"/*.cpp "$1"/*.h; then echo "${entry#*=}"; fi
  done
}

text() { # x, y, class, words
  printf '<text x="%d" y="%d" class="%s">%s</text>\n' "$1" "$2" "$3" "$4"
}

box() { # x, y, width, height, class
  printf '<rect x="%d" y="%d" width="%d" height="%d" rx="5" class="%s"/>\n' "$1" "$2" "$3" "$4" "$5"
}

# One storey of a folder: its list from the top down.
storey() { # x, y, height, class, names...
  local x=$1 y=$2 height=$3 class=$4 name
  shift 4
  box "$x" "$y" "$column" "$height" "$class"
  y=$((y + 17))
  for name; do
    text $((x + 10)) "$y" name "$name"
    y=$((y + row))
  done
}

draw() {
  local folder rooms=0 tools=0 used=0 n x y width height
  local -A room_names tool_names library_names
  for folder in "${folders[@]}"; do
    room_names[$folder]=$(files_of "$folder" | sed -n 's/^room //p')
    tool_names[$folder]=$(files_of "$folder" | sed -n 's/^tool //p')
    library_names[$folder]=$(libraries_of "$folder")
    n=$(wc -w <<<"${room_names[$folder]}") && rooms=$((n > rooms ? n : rooms))
    n=$(wc -w <<<"${tool_names[$folder]}") && tools=$((n > tools ? n : tools))
    n=$(wc -w <<<"${library_names[$folder]}") && used=$((n > used ? n : used))
  done
  rooms=$((rooms * row + 12)) tools=$((tools * row + 12)) used=$((used * row + 12))
  width=$((${#folders[@]} * (column + gap) - gap + 2 * edge))
  height=$((edge + 30 + head + 3 * 22 + rooms + tools + used + edge))
  cat <<EOF
<svg xmlns="http://www.w3.org/2000/svg" width="$width" height="$height" viewBox="0 0 $width $height" role="img">
<title>Six folders; in each its rooms above, its tools below, and the libraries that it uses</title>
<style>
text { font-family: 'DejaVu Sans', Verdana, Helvetica, sans-serif; font-size: 11px; fill: #24303a }
.folder { font-size: 15px; font-weight: bold }
.about { font-size: 11px; fill: #5b6a76 }
.storey { font-size: 11px; fill: #5b6a76 }
.light { fill: #f4f5f0 }
.ground { fill: #ffffff }
.roof { fill: #24303a }
.room { fill: #fbe7b8 }
.tool { fill: #d5e6ec }
.library { fill: #e4e2ec }
</style>
<rect width="100%" height="100%" rx="8" class="ground"/>
EOF
  y=$edge
  box "$edge" "$y" $((width - 2 * edge)) 24 roof
  text $((edge + 10)) $((y + 16)) light 'main.cpp: starts the screen, builds one Editor (core/editor.h), runs it'
  y=$((y + 30))
  x=$edge
  for folder in "${folders[@]}"; do
    text "$x" $((y + 20)) folder "$folder/"
    text "$x" $((y + 37)) about "${subject[$folder]}"
    x=$((x + column + gap))
  done
  y=$((y + head))
  floor 'rooms: operations of Editor, which include core/editor.h' "$y" "$rooms" room room_names
  y=$((y + 22 + rooms))
  floor 'tools: free functions on plain data, linked without the screen library' "$y" "$tools" tool tool_names
  y=$((y + 22 + tools))
  floor 'libraries' "$y" "$used" library library_names
  echo '</svg>'
}

floor() { # title, y, height, class, name of the lists
  local x=$edge folder
  local -n lists=$5
  text "$x" $(($2 + 15)) storey "$1"
  for folder in "${folders[@]}"; do
    # shellcheck disable=SC2086 # one argument per name
    storey "$x" $(($2 + 22)) "$3" "$4" ${lists[$folder]}
    x=$((x + column + gap))
  done
}

if [[ ${1-} == --check ]]; then
  diff -u docs/pictures/map.svg <(draw) || { echo 'The map has changed: scripts/draw_map.sh draws it anew.' >&2 && exit 1; }
else
  draw >docs/pictures/map.svg
fi
