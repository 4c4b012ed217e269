# ask_locale: where the environment names no locale at all, the terminal is asked whether it takes UTF-8. A letter
# of two bytes moves the cursor by one column there and by two on an 8-bit terminal. LC_CTYPE is C.UTF-8 afterwards
# when it moved by one, else C, and also when no answer comes within 200 ms. Sourced by bash; call it before the
# user can have typed anything, as what is typed meanwhile is lost. The menu asks in the same way.
ask_locale() {
  [ -z "${ZGTEKENSET:-}${LC_ALL:-}${LC_CTYPE:-}${LANG:-}" ] || return 0
  [ -t 0 ] && [ -t 1 ] || return 0
  local modes answer=
  modes=$(stty -g)
  stty -echo -icanon
  printf '\r\303\270\033[6n'
  IFS= read -r -s -t 0.2 -d R answer || answer=
  printf '\r\033[K'
  stty "$modes"
  case $answer in
    *$'\033['*';2') export LC_CTYPE=C.UTF-8 ;;
    *) export LC_CTYPE=C ;;
  esac
}
