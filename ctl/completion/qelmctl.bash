# Completion of qelmctl for bash. The program itself knows what could stand next, cards and
# names of the bus included.
_qelmctl() {
  local candidates candidate
  mapfile -t candidates < <(qelmctl complete "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
  COMPREPLY=()
  for candidate in "${candidates[@]}"; do
    COMPREPLY+=("$(printf '%q' "$candidate")")
  done
}
complete -o default -F _qelmctl qelmctl
