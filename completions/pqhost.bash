# Completion of pqhost's command line for bash:
#   source completions/pqhost.bash
# or copy it to /usr/share/bash-completion/completions/pqhost.

_pqhost_complete() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local formats="table json ndjson csv html sqlite none"
  local command="" word words
  COMPREPLY=()
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    case $word in
      collect | modules | query | check) command=$word; break ;;
    esac
  done

  case $previous in
    --replay | --record | --log-folder)
      mapfile -t COMPREPLY < <(compgen -d -- "$current")
      return ;;
    --plugin | --output | --trace)
      mapfile -t COMPREPLY < <(compgen -f -- "$current")
      return ;;
    --module)
      words="sampleModule1 sampleModule2 BMC_Info AMT_Info Windows_Related_Info" ;;
    --table)
      # What the program itself names; class names stand two columns in.
      words=$("${COMP_WORDS[0]}" modules 2>/dev/null | sed -n 's/^  \([A-Z0-9]*\) .*/\1/p') ;;
    --format)
      case $command in
        modules) words="table json markdown" ;;
        *) words=$formats ;;
      esac ;;
    --tool-limit) return ;;
    *)
      case $command in
        collect) words="--module --table --replay --record --log-folder --plugin --format --output
                        --tool-limit --dry-run --trace --help" ;;
        modules) words="--plugin --format --help" ;;
        query) words="--replay --plugin --log-folder --format --output --help" ;;
        check) words="--module --replay --log-folder --plugin --help" ;;
        *) words="collect modules query check --help --version" ;;
      esac ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
  if [[ $command == query && $current != -* && ${#COMPREPLY[@]} -eq 0 ]]; then
    mapfile -t COMPREPLY < <(compgen -f -X '!*.db' -- "$current")
  fi
}

complete -o filenames -F _pqhost_complete pqhost
