# SPDX-License-Identifier: Apache-2.0
# fish completion for reeldb: the command itself says what may follow.

function __reeldb_complete
    # Of what the shell would fill in, the folder of the user, which facilities often lie in.
    set -l words (commandline -opc | string replace -r '^(~|\$HOME)/' "$HOME/")
    set -l typed (commandline -ct | string unescape)
    test (count $typed) -gt 0; or set typed ''
    set -l lines (REELDB_COMPLETE=1 $words[1] $words[2..-1] "$typed" 2>/dev/null)
    switch "$lines[1]"
        case files
            __fish_complete_path "$typed"
        case folders
            __fish_complete_directories "$typed"
        case words
            test (count $lines) -gt 1; and printf '%s\n' $lines[2..-1]
    end
end

complete -c reeldb -f -a '(__reeldb_complete)'
