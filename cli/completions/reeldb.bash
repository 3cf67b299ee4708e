# SPDX-License-Identifier: Apache-2.0
# bash completion for reeldb: the command itself says what may follow.

_reeldb() {
  # The shell cuts words at "=" and ":", which reel identifiers and options hold.
  local -a words=()
  local word joins='' i
  for ((i = 1; i <= COMP_CWORD; ++i)); do
    word=${COMP_WORDS[i]}
    if ((${#words[@]} > 0)) && [[ $joins || $word == [=:]* ]]; then
      words[-1]+=$word
    else
      words+=("$word")
    fi
    [[ $word == *[=:] ]] && joins=yes || joins=
  done
  # What is typed stands in quotes or behind backslashes.
  for i in "${!words[@]}"; do
    word=${words[i]#[\"\']}
    words[i]=${word//\\/}
  done

  local -a lines
  mapfile -t lines < <(REELDB_COMPLETE=1 "$1" "${words[@]}" 2>/dev/null)
  local typed=${words[-1]} kept=''
  [[ $typed == *[=:]* ]] && kept=${typed%"${typed##*[=:]}"}
  local rest=${typed#"$kept"}
  case ${lines[0]-} in
  files)
    compopt -o filenames
    mapfile -t COMPREPLY < <(compgen -f -- "$rest")
    ;;
  folders)
    compopt -o filenames
    mapfile -t COMPREPLY < <(compgen -d -- "$rest")
    ;;
  words)
    COMPREPLY=()
    for word in "${lines[@]:1}"; do
      word=${word%%$'\t'*}
      [[ $word == *= ]] && compopt -o nospace
      word=${word#"$kept"}
      if [[ $word == *= || ${COMP_WORDS[COMP_CWORD]} == [\"\']* ]]; then
        COMPREPLY+=("$word")
      else
        COMPREPLY+=("$(printf %q "$word")")
      fi
    done
    ;;
  esac
} && complete -F _reeldb reeldb
