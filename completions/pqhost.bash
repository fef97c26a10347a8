# Completion of pqhost's command line for bash, written by "pqhost completion --shell bash":
#   source completions/pqhost.bash
# or copy it to /usr/share/bash-completion/completions/pqhost.

_pqhost_complete() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local command="" word words
  COMPREPLY=()
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    case $word in
      collect | health | diff | modules | query | show | check | setup | verify | redact | help) command=$word; break ;;
    esac
  done

  case "$command $previous" in
    'collect --module') words='sampleModule1 sampleModule2 BMC_Info AMT_Info Windows_Related_Info' ;;
    'collect --table') words='<table>' ;;
    'collect --replay') words='<file>' ;;
    'collect --limit') words='<any>' ;;
    'collect --compare') words='<file>' ;;
    'collect --record') words='<file>' ;;
    'collect --redact') words='public support' ;;
    'collect --key') words='<file>' ;;
    'collect --log-folder') words='<folder>' ;;
    'collect --plugin') words='<file>' ;;
    'collect --format') words='table json ndjson csv html sqlite prometheus none' ;;
    'collect --output') words='<file>' ;;
    'collect --tool-limit') words='<any>' ;;
    'collect --tool-memory') words='<any>' ;;
    'collect --amt-login') words='<file>' ;;
    'collect --time-limit') words='<any>' ;;
    'collect --trace') words='<file>' ;;
    'collect '*) words='--module --table --replay --limit --unverified --report --no-open --compare --record --redact --key --log-folder --plugin --unsafe-folder --format --output --identify --no-attachments --all --tool-limit --tool-memory --amt-login --no-input --time-limit --dry-run --trace --help' ;;
    'health --replay') words='<file>' ;;
    'health --limit') words='<any>' ;;
    'health --format') words='table json nagios csv sqlite' ;;
    'health --output') words='<file>' ;;
    'health --rules') words='<file>' ;;
    'health --set') words='<any>' ;;
    'health --settings') words='<file>' ;;
    'health --suppress') words='<file>' ;;
    'health --require') words='<any>' ;;
    'health --as-of') words='<any>' ;;
    'health --log-folder') words='<folder>' ;;
    'health --plugin') words='<file>' ;;
    'health --time-limit') words='<any>' ;;
    'health '*) words='--replay --limit --unverified --format --output --brief --rules --set --settings --suppress --require --as-of --list-rules --log-folder --plugin --unsafe-folder --time-limit --help' ;;
    'diff --ignore') words='<any>' ;;
    'diff --table') words='<table>' ;;
    'diff --part') words='<any>' ;;
    'diff --format') words='table json csv sqlite html' ;;
    'diff --output') words='<file>' ;;
    'diff --limit') words='<any>' ;;
    'diff --time-limit') words='<any>' ;;
    'diff '*) words='--ignore --table --part --all --format --output --limit --unverified --list-compared --time-limit --help' ;;
    'modules --plugin') words='<file>' ;;
    'modules --format') words='table json markdown parts metrics' ;;
    'modules --time-limit') words='<any>' ;;
    'modules '*) words='--plugin --format --time-limit --help' ;;
    'query --replay') words='<file>' ;;
    'query --limit') words='<any>' ;;
    'query --plugin') words='<file>' ;;
    'query --log-folder') words='<folder>' ;;
    'query --format') words='table json ndjson csv html sqlite none' ;;
    'query --output') words='<file>' ;;
    'query --time-limit') words='<any>' ;;
    'query '*) words='--replay --limit --unverified --plugin --unsafe-folder --log-folder --format --output --time-limit --help' ;;
    'show --format') words='table json ndjson csv html sqlite prometheus none' ;;
    'show --output') words='<file>' ;;
    'show --limit') words='<any>' ;;
    'show --time-limit') words='<any>' ;;
    'show '*) words='--format --output --identify --no-attachments --all --limit --unverified --time-limit --help' ;;
    'check --module') words='sampleModule1 sampleModule2 BMC_Info AMT_Info Windows_Related_Info' ;;
    'check --replay') words='<file>' ;;
    'check --limit') words='<any>' ;;
    'check --log-folder') words='<folder>' ;;
    'check --plugin') words='<file>' ;;
    'check --format') words='table json' ;;
    'check --time-limit') words='<any>' ;;
    'check '*) words='--module --replay --limit --unverified --log-folder --plugin --unsafe-folder --format --time-limit --help' ;;
    'setup --from') words='<folder>' ;;
    'setup --time-limit') words='<any>' ;;
    'setup '*) words='--from --copy --time-limit --help' ;;
    'verify --limit') words='<any>' ;;
    'verify --time-limit') words='<any>' ;;
    'verify '*) words='--key --limit --time-limit --help' ;;
    'redact --profile') words='support public' ;;
    'redact --kind') words='<any>' ;;
    'redact --map') words='<file>' ;;
    'redact --key') words='<file>' ;;
    'redact --limit') words='<any>' ;;
    'redact --time-limit') words='<any>' ;;
    'redact '*) words='--profile --kind --preview --map --key --limit --unverified --time-limit --help' ;;
    'help --time-limit') words='<any>' ;;
    'help '*) words='collect health diff modules query show check setup verify redact help --time-limit --help' ;;
    *) words='collect health diff modules query show check setup verify redact help --version --help' ;;
  esac

  case $words in
    '<folder>')
      mapfile -t COMPREPLY < <(compgen -d -- "$current")
      return ;;
    '<file>')
      mapfile -t COMPREPLY < <(compgen -f -- "$current")
      return ;;
    '<any>') return ;;
    '<table>')
      # The program lists them, each in a line of its own, two columns in.
      words=$("${COMP_WORDS[0]}" modules 2>/dev/null | sed -n 's/^  \([A-Z0-9]*\) .*/\1/p') ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
  [[ $current == -* || ${#COMPREPLY[@]} -gt 0 ]] && return
  # A word that belongs to no option.
  case $command in
    diff) mapfile -t COMPREPLY < <(compgen -f -- "$current") ;;
    query) mapfile -t COMPREPLY < <(compgen -f -X '!*.db' -- "$current") ;;
    show) mapfile -t COMPREPLY < <(compgen -f -- "$current") ;;
    verify) mapfile -t COMPREPLY < <(compgen -f -- "$current") ;;
    redact) mapfile -t COMPREPLY < <(compgen -f -- "$current") ;;
  esac
}

complete -o filenames -F _pqhost_complete pqhost
