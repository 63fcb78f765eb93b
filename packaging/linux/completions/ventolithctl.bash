# Completion of ventolithctl's commands, options and files for bash.
# Installed as share/bash-completion/completions/ventolithctl.

_ventolithctl_words() { # WORD...: those that begin as what stands on the line
  mapfile -t COMPREPLY < <(compgen -W "$*" -- "$current")
}

_ventolithctl_files() { # SUFFIX: folders, and the files that end in it
  compopt -o filenames 2>/dev/null
  mapfile -t COMPREPLY < <(compgen -d -- "$current"; compgen -f -X "!*.$1" -- "$current")
}

# The commands before the cursor, without options and what belongs to them.
_ventolithctl_given() {
  local word takes=
  given=()
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    if [[ -n $takes ]]; then
      takes=
      continue
    fi
    case $word in
    --plan | --trace | --seconds | --every) takes=1 ;;
    -*) ;;
    *) given+=("$word") ;;
    esac
  done
}

_ventolithctl() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} given command place
  COMPREPLY=()
  _ventolithctl_given
  command=${given[0]-}
  place=${#given[@]}

  case $previous in
  --plan) _ventolithctl_files json; return ;;
  --trace) _ventolithctl_files jsonl; return ;;
  --seconds | --every) return ;;
  esac

  if [[ $current == -* ]]; then
    case $command in
    '') _ventolithctl_words --help --version ;;
    snapshot | status) _ventolithctl_words --help --json ;;
    watch | record) _ventolithctl_words --help --seconds ;;
    replay) _ventolithctl_words --help --plan --trace --json --every ;;
    check) _ventolithctl_words --help --trace ;;
    hold) _ventolithctl_words --help --plan --seconds --json ;;
    apply) _ventolithctl_words --help --hold ;;
    *) _ventolithctl_words --help ;;
    esac
    return
  fi

  case $command,$place in
  ,0) _ventolithctl_words snapshot watch record replay check hold status apply set full-blast auto helper ;;
  helper,1) _ventolithctl_words install uninstall status restart ;;
  check,1 | apply,1) _ventolithctl_files json ;;
  record,1) _ventolithctl_files jsonl ;;
  set,1) _ventolithctl_words 0 1 2 3 4 5 6 7 8 9 ;;
  esac
}

complete -F _ventolithctl ventolithctl
