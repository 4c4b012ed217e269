#!/bin/sh
# usage: make.sh PROGRAMS OUTPUT TOOL...
# Completion of the tools' words for bash (OUTPUT/bash, a link a tool) and zsh (OUTPUT/zsh/_zgbestel), out of what each tool in the
# directory PROGRAMS says of itself (TOOL --words), and the file "words" beside this one of those that don't.
set -eu
programs=$1 output=$2
shift 2
mkdir -p "$output/bash" "$output/zsh"
list=$output/words
: >"$list.new"
for tool; do
  grep "^$tool	" "${0%/*}/words" >>"$list.new" && continue
  "$programs/$tool" --words >"$list.one"
  sed "s/^/$tool	/" "$list.one" >>"$list.new"
done
rm "$list.one"
mv "$list.new" "$list"

awk -F '\t' '
  function add(kind, at, text) { if (!((kind, at) in all)) order[++n] = kind SUBSEP at; all[kind, at] = all[kind, at] text }
  BEGIN { print "# Completion for bash: the operators\047 tools. Made, not written." }
  {
    at = $1 ":" $2
    if ($5 == "command") add("commands", $1, " " $4)
    else if ($5 == "arg") add("args", at, " " $6)
    else for (w = 3; w <= 4; w++) if ($w != "") {
      add("options", at, " " $w)
      if ($5 == "value") add("values", at ":" $w, $6)
    }
  }
  END {
    split("options args values commands", kinds, " ")
    for (k = 1; k <= 4; k++) {
      print "declare -A _zg_" kinds[k] "=("
      for (i = 1; i <= n; i++) {
        split(order[i], o, SUBSEP)
        if (o[1] == kinds[k]) print "  [\047" o[2] "\047]=\047" all[order[i]] "\047"
      }
      print ")"
    }
  }' "$list" >"$output/bash/zgbestel.new"
cat >>"$output/bash/zgbestel.new" <<'END'
_zg_kind() { # what may stand here, by its kind
  local IFS=$'\n'
  compopt -o filenames 2>/dev/null
  case $1 in
    {*}) compopt +o filenames 2>/dev/null
      COMPREPLY+=($(compgen -W "$(tr -d '{}' <<<"$1" | tr ',' '\n')" -- "$2")) ;;
    dir) COMPREPLY+=($(compgen -d -- "$2")) ;;
    file) COMPREPLY+=($(compgen -f -- "$2")) ;;
    by:*) _zg_by "${1#by:}" "$2" ;;
    pair) COMPREPLY+=($(compgen -f -X '!*.INX' -- "$2" | sed 's/\.INX$//') $(compgen -d -- "$2")) ;;
  esac
}
_zg_by() { # a kind first, behind it numbers, then the names of that kind; all of them in "kind/numbers/name=,name=+..."
  local rows row words= rest
  compopt +o filenames 2>/dev/null
  IFS=+ read -ra rows <<<"$1"
  for row in "${rows[@]}"; do
    rest=${row#*/}
    if ((n == 0)); then
      words+=${row%%/*}$'\n'
    elif [[ $first == "${row%%/*}" ]] && ((n > ${rest%%/*})); then
      words=$(tr ',' '\n' <<<"${rest#*/}")
      compopt -o nospace 2>/dev/null
    fi
  done
  COMPREPLY+=($(compgen -W "$words" -- "$2"))
}
_zg_complete() {
  local tool=${1##*/} word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command= first= i n=0 kinds
  [[ $word == = || $before == = ]] && return # a value, which nobody knows
  COMPREPLY=()
  for ((i = 1; i < COMP_CWORD; i++)); do
    if [[ -z $command && " ${_zg_commands[$tool]:-} " == *" ${COMP_WORDS[i]} "* ]]; then
      command=${COMP_WORDS[i]} n=0
    elif [[ ${COMP_WORDS[i]} == -* ]]; then
      [[ -n ${_zg_values["$tool:$command:${COMP_WORDS[i]}"]:-} ]] && ((++i))
    else
      ((n++ == 0)) && first=${COMP_WORDS[i]}
    fi
  done
  kinds=${_zg_values["$tool:$command:$before"]:-}
  if [[ -n $kinds ]]; then
    _zg_kind "$kinds" "$word"
  elif [[ $word == -* ]]; then
    COMPREPLY=($(compgen -W "${_zg_options["$tool:$command"]:-}" -- "$word"))
  elif [[ -z $command && -n ${_zg_commands[$tool]:-} ]]; then
    COMPREPLY=($(compgen -W "${_zg_commands[$tool]}" -- "$word"))
  else
    kinds=(${_zg_args["$tool:$command"]:-})
    ((${#kinds[@]})) && _zg_kind "${kinds[n < ${#kinds[@]} ? n : ${#kinds[@]} - 1]}" "$word"
  fi
}
END
echo "complete -F _zg_complete $*" >>"$output/bash/zgbestel.new"
mv "$output/bash/zgbestel.new" "$output/bash/zgbestel"
for tool; do ln -sf zgbestel "$output/bash/$tool"; done # looked for by the name of the command

{
  echo "#compdef $*"
  echo "# Completion for zsh: the operators' tools. Made, not written."
  awk -F '\t' '
    function clean(s) { gsub(/\047/, "\047\\\047\047", s); gsub(/\\|\[|\]|:/, "\\\\&", s); return s }
    function kind(k,   c) {
      if (k ~ /^{/) { c = substr(k, 2, length(k) - 2); gsub(",", " ", c); return "(" c ")" }
      if (k ~ /^by:/) return " _zg_by " substr(k, 4) # the blank: called with nothing else
      return k == "dir" ? "_directories" : k == "file" ? "_files" : k == "pair" ? "_zg_pair" : " "
    }
    {
      at = $1 ($2 == "" ? "" : "_" $2); gsub("-", "_", at); if (!($1 in seen)) { seen[$1] = 1; tools[++nt] = $1 }
      if ($5 == "command") { commands[$1] = commands[$1] " \047" $4 ":" clean($7) "\047"; names[$1] = names[$1] " " $4; next }
      have[at] = 1
      if ($5 == "arg") { line[at] = line[at] " \047" (++n[at]) ":" clean($4) ":" kind($6) "\047"; last[at] = "\047*:" clean($4) ":" kind($6) "\047"; next }
      tail = "[" clean($7) "]" ($5 == "value" ? ":" clean($4) ":" kind($6) : "") "\047"
      both = ($3 != "" && $4 != "") ? "\047(" $3 " " $4 ")\047" : ""
      if ($3 != "") line[at] = line[at] " " both "\047" $3 tail
      if ($4 != "") line[at] = line[at] " " both "\047" $4 ($5 == "value" ? "=" : "") tail
    }
    END {
      print "_zg_by() { # kind/numbers/name=,name=+..., see bash"
      print "  local row; local -a rows part"
      print "  rows=(\"${(@s.+.)1}\")"
      print "  for row in $rows; do"
      print "    part=(\"${(@s./.)row}\")"
      print "    if ((CURRENT == 2)); then compadd -- $part[1]"
      print "    elif [[ $words[2] == $part[1] ]] && ((CURRENT > 2 + part[2])); then compadd -S \"\" -- ${(s.,.)part[3]}"
      print "    fi"
      print "  done"
      print "}"
      print "_zg_pair() { compadd -f -- *.INX(N:r); _files -/ }"
      for (j = 1; j <= nt; j++) {
        t = tools[j]
        print "_zg_" t "() {"
        if (t in commands) {
          print "  local curcontext=$curcontext state line"
          print "  _arguments -C" line[t] " \0471:command:->command\047 \047*::word:->word\047"
          print "  case $state in"
          print "    command) local -a c; c=(" commands[t] " ); _describe command c ;;"
          print "    word) case $line[1] in"
          ns = split(names[t], s, " ")
          for (i = 1; i <= ns; i++) { at = t "_" s[i]; gsub("-", "_", at); print "      " s[i] ") _arguments" line[at] " " last[at] " ;;" }
          print "    esac ;;"
          print "  esac"
        } else print "  _arguments" line[t] " " last[t]
        print "}"
      }
    }' "$list"
  echo '_zg_${service}'
} >"$output/zsh/_zgbestel.new"
mv "$output/zsh/_zgbestel.new" "$output/zsh/_zgbestel"
