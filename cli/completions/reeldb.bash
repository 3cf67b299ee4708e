# SPDX-License-Identifier: Apache-2.0
# bash completion for reeldb: the command itself says what may follow.

# Sets REPLY to what the shell would make of a word: without quotes, with "~" and variables filled in. Nothing is run: a
# word that holds a command is left as it is, and so is one that begins with an operator, such as a redirection.
_reeldb_unquoted() {
  REPLY=$1
  case $1 in
  *'`'* | *'$('* | *'${'* | *'<('* | *'>('* | ['<>&;|']*) ;;
  *) eval "REPLY=$1" 2>/dev/null || REPLY=$1 ;;
  esac
}

_reeldb() {
  # The shell cuts words at "=" and ":", which reel identifiers and options hold.
  local -a raw=()
  local word joins='' i
  for ((i = 1; i <= COMP_CWORD; ++i)); do
    word=${COMP_WORDS[i]}
    if ((${#raw[@]} > 0)) && [[ $joins || $word == [=:]* ]]; then
      raw[-1]+=$word
    else
      raw+=("$word")
    fi
    [[ $word == *[=:] ]] && joins=yes || joins=
  done

  # The last word may stand in quotes that are still open; then it is replaced whole, and what replaces it must fit there.
  local typed=${raw[-1]} quote='' kept='' REPLY
  local -a words=()
  case $typed in
  \"*) quote=\" typed=${typed#\"} && typed=${typed//\\\\/\\} ;;
  \'*) quote=\' typed=${typed#\'} ;;
  *)
    _reeldb_unquoted "$typed"
    typed=$REPLY
    [[ $typed == *[=:]* ]] && kept=${typed%"${typed##*[=:]}"}
    ;;
  esac
  for word in "${raw[@]:0:${#raw[@]}-1}"; do
    _reeldb_unquoted "$word"
    words+=("$REPLY")
  done
  words+=("$typed")

  local -a lines
  mapfile -t lines < <(REELDB_COMPLETE=1 "$1" "${words[@]}" 2>/dev/null)
  case ${lines[0]-} in
  files)
    compopt -o filenames
    mapfile -t COMPREPLY < <(compgen -f -- "${typed#"$kept"}")
    ;;
  folders)
    compopt -o filenames
    mapfile -t COMPREPLY < <(compgen -d -- "${typed#"$kept"}")
    ;;
  words)
    COMPREPLY=()
    for word in "${lines[@]:1}"; do
      word=${word%%$'\t'*}
      [[ $word == *= ]] && compopt -o nospace
      word=${word#"$kept"}
      case $quote in
      \') [[ $word == *\'* ]] || COMPREPLY+=("$word") ;; # no way to write it there
      \") COMPREPLY+=("$(sed 's/[\\"$`]/\\&/g' <<<"$word")") ;;
      *)
        if [[ $word == *= ]]; then
          COMPREPLY+=("$word")
        else
          COMPREPLY+=("$(printf %q "$word")")
        fi
        ;;
      esac
    done
    ;;
  esac
} && complete -F _reeldb reeldb
