# bash completion of the stn- programs, from what their own --help says: options, the values of those that have a list,
# and file names elsewhere. Installed under the name of each program.
_stn_program() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} help words=""
  help=$("$1" --help 2> /dev/null) || return
  if [[ $current == -* ]]; then
    words=$(sed -nE 's/^ +((-[a-zA-Z]),)?(--[a-z0-9-]+).*/\2 \3/p' <<< "$help")
  elif [[ $previous == --* ]]; then
    words=$(sed -nE "s/^ +(-[a-zA-Z],)?$previous [A-Z]+:\\{([^}]*)\\}.*/\\2/p" <<< "$help")
  fi
  mapfile -t COMPREPLY < <(compgen -W "${words//,/ }" -- "$current")
}
complete -o default -F _stn_program "${BASH_SOURCE[0]##*/}"
