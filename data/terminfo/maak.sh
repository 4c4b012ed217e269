#!/bin/sh
# usage: maak.sh OUTPUT_DIRECTORY
# Compiles the program's terminal descriptions from the system's own: each name with a capital, and the
# variants "-w" (132 columns) and "-l" (43 lines). Terminals that the system does not know are left out, but
# for those in the second list, which say they are an xterm.
set -eu
out=$1
own='xterm xterm-256color xterm-color xterm-direct vte vte-256color gnome konsole konsole-256color putty
     putty-256color st st-256color tmux tmux-256color screen screen-256color linux vt100 vt220 vt102 vt320 rxvt
     rxvt-256color rxvt-unicode rxvt-unicode-256color foot alacritty xterm-kitty iterm2 mintty ms-terminal'
like_xterm='foot alacritty xterm-kitty rxvt-unicode-256color xterm-ghostty wezterm tmux-direct'

rm -rf "$out.new"
mkdir -p "$out.new"

# entry NAME BASE: the three entries of one terminal.
#   bce@    a clear would colour the whole window, also outside our part of it
#   csr@    or a larger window stays with a scroll region of our size
#   rep@    not every terminal that says it is an xterm can repeat
#   ncv#2   underline on a colour terminal is a colour
#   smkx    cursor keys only: in application mode many send function keys for - + * / of the numeric keypad
#   dim     screen underlines what should be dim where the terminal around it has no dim
#   cnorm   shows the cursor, and leaves its blinking as the user has it
#   smcup   an xterm sends another letter for Alt with a letter (a gives á), which would be typed text: here it is ESC
#           and the letter, and outside the program what the user had
# The init strings don't move the cursor, nor what the terminal has kept of its place: no soft reset, no origin
# mode. Else the shell's prompt would land on the old screen.
# The size of vt terminals is switched by their own command, which an emulator may have to be allowed first;
# windows are as large as the user made them.
entry() {
  capital=$(printf %s "$1" | sed 's/^./\U&/')
  case $1 in
    screen* | tmux*) init='\E)0\E[4l\E[?7h' ;;
    vt100 | vt102) init='\E<\E>\E[?4;5l\E[4l\E[?7h' ;;
    *) init='\E[4l\E[?7h' ;;
  esac
  description=$(infocmp -1 "$2")
  # A program that was killed while it printed through the terminal has left it printing.
  case $description in *"$(printf '\n\tmc4=\\E[4i,')"*) printer='\E[4i' ;; *) printer= ;; esac
  wide= back=
  case $1 in vt*0 | vt102) wide='\E[?40h\E[?3h' back='\E[?3l' ;; esac
  case $description in *'cnorm=\E[?12l\E[?25h,'*) cursor='cnorm=\E[?25h,' ;; *) cursor= ;; esac
  case $(printf '%s\n' "$description" | sed -n 's/^\tsmkx=//p') in
    *'[?1h'*) keys='smkx=\E[?1h, rmkx=\E[?1l' ;;
    *) keys='smkx@, rmkx@' ;;
  esac
  dim=
  case $1 in
    screen*)
      sgr=$(printf '%s\n' "$description" | sed -n 's/^\tsgr=\(.*\),$/\1/p' | sed 's/%?%p5%t;2%;//')
      dim="dim@, ${sgr:+sgr=$sgr,}"
      ;;
  esac
  meta=
  case $1 in
    xterm | xterm-256color | xterm-color | xterm-direct)
      own_screen() { printf '%s\n' "$description" | sed -n "s/^\t$1=\(.*\),\$/\1/p"; }
      meta="smcup=$(own_screen smcup)\E[?1036s\E[?1036h, rmcup=\E[?1036r$(own_screen rmcup),"
      ;;
  esac
  # Control-X cancels, Control-] ends the program, Control-G helps; Esc, Control-\ and F1 do so as well
  common="am, it#8, bce@, csr@, rep@, ncv#2, is1@, is3@, if@, iprog@, rs1@, rs3@, rf@, kcan=^X, kext=^], khlp=^G, $keys, $cursor $dim $meta"
  cat <<END
$capital|$1 with 25 lines of 80 columns,
	lines#25, cols#80, is2=$init$printer, rs2=$init, $common use=$2,
$capital-w|$1 with 25 lines of 132 columns,
	lines#25, cols#132, is2=$init$printer$wide, rs2=$init$back, $common use=$2,
$capital-l|$1 with 43 lines of 80 columns,
	lines#43, cols#80, is2=$init$printer, rs2=$init, $common use=$2,
END
}

for t in $own; do
  if infocmp "$t" >/dev/null 2>&1; then
    entry "$t" "$t"
  fi
done >"$out.new/source"
for t in $like_xterm; do
  if ! infocmp "$t" >/dev/null 2>&1; then
    entry "$t" xterm-256color
  fi
done >>"$out.new/source"
tic -x -o "$out.new" "$out.new/source"
rm "$out.new/source"
rm -rf "$out"
mv "$out.new" "$out"
