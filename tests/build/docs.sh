#!/bin/sh
# Runs the examples of one page of documentation. Every ```cpp block is a program (```cpp drawing: with that library, too): it must compile, run, and print what the ```text
# block behind it shows. Every line "$ command" of a ```console block must succeed in a folder that holds the example drawings, and
# print the lines shown below it, if any are.
# usage: docs.sh PAGE EXAMPLES_DIR TOOL_DIR COMPILE...     COMPILE is the compiler with all flags; source, -o and libraries are added
set -eu
page=$1 examples=$2 PATH=$3:$PATH
shift 3
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir "$scratch/blocks"
cp -r "$examples" "$scratch/run"

# Writes each block to a file named by its number and language: 1.cpp, 2.text, 3.console.
awk -v dir="$scratch/blocks" '
  /^```/ { if (file) { close(file); file = "" } else { language = substr($0, 4); if (language == "cpp drawing") language = "drawing.cpp"
            file = dir "/" ++n "." language }; next }
  file { print >file }
' "$page"

count=0
for block in $(ls "$scratch/blocks" | sort -n); do
  number=${block%%.*}
  cd "$scratch/blocks"
  case $block in
    *.cpp)
      case $block in *.drawing.cpp) libraries="-lzbr-drawing -lzbr -lpthread" ;; *) libraries=-lzbr ;; esac
      "$@" "$block" -o program $libraries
      ./program >printed || { echo "$page: program in block $number failed"; exit 1; }
      shown=$((number + 1)).text
      test -f "$shown" || { echo "$page: block $number is not followed by what it prints"; exit 1; }
      diff -u "$shown" printed
      count=$((count + 1))
      ;;
    *.console)
      cd "$scratch/run"
      # Commands go to the shell one by one; the shown lines until the next command are compared when there are any.
      awk '
        function flush() { if (command) printf "{ %s\n} >printed 2>&1 || { cat printed; exit 1; }\n", command
                           if (shown) printf "diff -u - printed <<\"END\"\n%sEND\n", shown
                           command = shown = "" }
        /^\$ / { flush(); command = substr($0, 3); next }
        { shown = shown $0 "\n" }
        END { flush() }
      ' "$scratch/blocks/$block" >"$scratch/commands"
      sh -eu "$scratch/commands" || { echo "$page: a command in block $number failed or printed something else"; exit 1; }
      count=$((count + 1))
      ;;
  esac
done
test "$count" -gt 0 || { echo "$page holds no example"; exit 1; }
echo "$count examples of $page run"
