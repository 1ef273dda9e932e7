# Completion in bash: the tool knows how a line of its own may go on.
_velmora() {
  mapfile -t COMPREPLY < <("$1" complete "${COMP_LINE:0:COMP_POINT}" 2>/dev/null)
}
complete -o default -F _velmora velmora
