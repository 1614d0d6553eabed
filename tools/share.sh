#!/usr/bin/env bash
# share.sh: prints how much of the code the tests are: lines of C++, C, resource scripts, shell and CMake without blanks and
# comments, those below tests/ and fuzz/ against all.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
cd "$ROOT"

# code_lines PATTERN...: counts over the files that git knows. A line counts when code is left of its comments.
code_lines() {
    git ls-files -z --cached --others --exclude-standard -- "$@" | xargs -0 -r awk '
        FNR == 1 { inside = 0; hash = FILENAME !~ /\.(cpp|h|c|inl|rc|def)$/ }
        {
            line = $0
            if (hash)
                sub(/^[[:space:]]*#.*/, "", line)
            else {
                if (inside && !sub(/^.*\*\//, "", line))
                    next
                inside = 0
                gsub(/\/\*([^*]|\*[^\/])*\*\//, "", line)
                sub(/\/\/.*/, "", line)
                if (sub(/\/\*.*/, "", line))
                    inside = 1
            }
            if (line ~ /[^[:space:]]/)
                ++count
        }
        END { print count + 0 }' | awk '{ sum += $1 } END { print sum + 0 }'
}

kinds=('*.cpp' '*.h' '*.c' '*.inl' '*.rc' '*.sh' '*CMakeLists.txt' '*.cmake' 'run' 'test')
all=$(code_lines "${kinds[@]}")
tests=$(code_lines "${kinds[@]/#/:(glob)tests/**/}" "${kinds[@]/#/:(glob)fuzz/**/}")
say "Tests are $tests of $all lines of code: $((1000 * tests / all / 10)).$((1000 * tests / all % 10)) %"
