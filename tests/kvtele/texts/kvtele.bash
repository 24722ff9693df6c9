# Made by the build from the parser of kvtele: changes here are lost.

# The replies to the word under the cursor, whether it is typed in capitals or not. The shell cuts words at colons, so
# what stands before the last one goes.
_kvtele_reply() { # CANDIDATE...
  local candidate before=${current%"${current##*:}"}
  [[ $COMP_WORDBREAKS == *:* ]] || before=
  for candidate; do
    [[ ${candidate,,} == "${current,,}"* ]] && COMPREPLY+=("$(printf '%q' "${candidate#"$before"}")")
  done
}
_kvtele_files() { # -f or -d
  local IFS=$'\n'
  compopt -o filenames 2>/dev/null
  COMPREPLY+=($(compgen "$1" -- "$current"))
}
_kvtele_sessions() {
  local name
  while IFS=$'\t' read -r name _; do _kvtele_reply "$name"; done < <("$program" "${home[@]}" sessions list 2>/dev/null)
}
_kvtele_offer() { # VERB:OPTION or VERB:NUMBER-OF-ARGUMENT
  case $1 in
    *:--home) _kvtele_files -d ;;
    *:--session) _kvtele_sessions ;;
    *:--link) _kvtele_reply 'sim:K220-22-R1' 'sim:K220-32' 'sim:K330' 'sim:K360' 'sim:K380-28' 'sim:K390' 'sim:K630' 'sim:K230' 'sim:K670-67-C30 / K390-29-C30' 'sim:K670-67-T40 / K390-29-T40' 'sim:K670-67-T34 / K390-29-T34' 'sim:K670-67-T20 / K390-29-T20' 'sim:K660-66-C30' 'sim:K660-66-T40' 'sim:K660-66-T34' 'sim:K660-66-T20' 'sim:K660-66-T25B' 'sim:K450-45' 'sim:K530' 'sim:K530-J' 'sim:K2040' 'sim:K2210' 'sim:K800' 'sim:TQ45' 'sim:TQ53' 'sim:TQ80' 'sim:TQ80-OEM' 'sim:AurexQ50' 'sim:Q50' 'sim:Q50Net' 'sim:Q51' 'sim:Q58' 'sim:PX1' 'sim:PR1' 'sim:BRIO' 'tcp:' 'serial:' 'modem:' 'listen:' ;;
    *:--password-file) _kvtele_files -f ;;
    *:--model) _kvtele_reply 'K220-22-R1' 'K220-32' 'K230' 'K330' 'K360' 'K380-28' 'K390' 'K630' 'K450-45' 'K530' 'K530-J' 'K660-66-C30' 'K660-66-T40' 'K660-66-T34' 'K660-66-T20' 'K660-66-T25B' 'K670-67-C30 / K390-29-C30' 'K670-67-T40 / K390-29-T40' 'K670-67-T34 / K390-29-T34' 'K670-67-T20 / K390-29-T20' 'K800' 'K2040' 'K2210' 'TQ45' 'TQ53' 'TQ80' 'TQ80-OEM' 'Q50' 'Q50Net' 'AurexQ50' 'Q51' 'Q58' 'PX1' 'PR1' 'BRIO' ;;
    *:--trace) _kvtele_files -f ;;
    online:--project) _kvtele_files -f ;;
    read:--size) _kvtele_reply '1' '8' '16' '32' ;;
    read:--format) _kvtele_reply 'ascii' 'binary' 'unsigned' 'hex' 'decimal' 'float' ;;
    read:0) _kvtele_reply 'MB' 'MI' 'MF' 'ML' 'DW' 'DBI' 'SB' 'SI' 'SL' 'SDW' 'INPUT' 'OUTPUT' 'TIMER-PRESET' 'TIMER-CURRENT' 'TIMER-VALUE' 'COUNTER-PRESET' 'COUNTER-CURRENT' 'COUNTER-VALUE' 'XB' 'XI' 'XL' 'XDW' ;;
    write:0) _kvtele_reply 'MB' 'MI' 'MF' 'ML' 'DW' 'DBI' 'SB' 'SI' 'SL' 'SDW' 'INPUT' 'OUTPUT' 'TIMER-PRESET' 'TIMER-CURRENT' 'TIMER-VALUE' 'COUNTER-PRESET' 'COUNTER-CURRENT' 'COUNTER-VALUE' 'XB' 'XI' 'XL' 'XDW' ;;
    regions:0) _kvtele_reply 'read' 'write' ;;
    regions:1) _kvtele_files -f ;;
    regions:[0-9]*) _kvtele_files -f ;;
    watch:[0-9]*) _kvtele_files -f ;;
    clone:--backup) _kvtele_files -f ;;
    clone:0) _kvtele_reply 'create' 'restore' 'verify' 'info' 'diff' ;;
    clone:[0-9]*) _kvtele_files -f ;;
    download:--file) _kvtele_files -f ;;
    download:--fonts) _kvtele_files -f ;;
    download:--backup) _kvtele_files -f ;;
    download:0) _kvtele_reply 'info' 'project' 'os' ;;
    download:[0-9]*) _kvtele_files -f ;;
    screen:--png) _kvtele_files -f ;;
    screen:--cache) _kvtele_files -f ;;
    cache:--only) _kvtele_reply 'fonts' 'images' ;;
    cache:0) _kvtele_reply 'import' 'info' 'diff' ;;
    cache:[0-9]*) _kvtele_files -f ;;
    journal:--csv) _kvtele_files -f ;;
    journal:[0-9]*) _kvtele_reply 'list' 'check' 'acknowledge' ;;
    sessions:0) _kvtele_reply 'list' 'create' 'delete' ;;
  esac
}
_kvtele_takes_value() { # VERB:OPTION
  case $1 in
    *:--home | *:--session | *:--link | *:--unit | *:--serial-number | *:--redials | *:--timeout | *:--retries | *:--user | *:--password | *:--password-file | *:--model | *:--trace | *:--reason) return 0 ;;
    online:--project) return 0 ;;
    read:--size | read:--format) return 0 ;;
    watch:--count | watch:--for | watch:--every) return 0 ;;
    clone:--segments | clone:--comment | clone:--backup) return 0 ;;
    download:--file | download:--fonts | download:--backup | download:--retry) return 0 ;;
    screen:--png | screen:--cache | screen:--count | screen:--for) return 0 ;;
    cache:--only) return 0 ;;
    journal:--operand | journal:--by | journal:--day | journal:--csv | journal:--expect) return 0 ;;
  esac
  return 1
}
_kvtele_options() { # VERB
  _kvtele_reply '--help' '--version' '--home' '--session' '--link' '--unit' '--serial-number' '--redials' '--timeout' '--retries' '--user' '--password' '--password-file' '--model' '--json' '--trace' '--yes' '--reason' '--unrecorded'
  case $1 in
    identify) _kvtele_reply '--help' ;;
    online) _kvtele_reply '--help' '--project' ;;
    read) _kvtele_reply '--help' '--size' '--format' ;;
    write) _kvtele_reply '--help' ;;
    regions) _kvtele_reply '--help' '--csv' ;;
    watch) _kvtele_reply '--help' '--count' '--for' '--every' ;;
    clone) _kvtele_reply '--help' '--segments' '--replace' '--stop' '--no-stop' '--comment' '--force' '--verify' '--end-load' '--erase-empty' '--unit-from-controller' '--backup' ;;
    download) _kvtele_reply '--help' '--file' '--fonts' '--list' '--dry-run' '--backup' '--replace' '--stop' '--no-stop' '--other-model' '--no-reset' '--end-load' '--retry' '--same-os' '--older-os' '--lose-project' '--lose-values' ;;
    run) _kvtele_reply '--help' ;;
    stop) _kvtele_reply '--help' ;;
    screen) _kvtele_reply '--help' '--png' '--text' '--cache' '--fetch' '--watch' '--count' '--for' ;;
    press) _kvtele_reply '--help' '--take-over' ;;
    cache) _kvtele_reply '--help' '--all' '--only' '--replace' ;;
    journal) _kvtele_reply '--help' '--operand' '--by' '--day' '--csv' '--expect' ;;
    sessions) _kvtele_reply '--help' ;;
    ports) _kvtele_reply '--help' ;;
    paths) _kvtele_reply '--help' ;;
    report) _kvtele_reply '--help' ;;
  esac
}
_kvtele_verbs() { _kvtele_reply 'identify' 'online' 'read' 'write' 'regions' 'watch' 'clone' 'download' 'run' 'stop' 'screen' 'press' 'cache' 'journal' 'sessions' 'ports' 'paths' 'report'; }

_kvtele() {
  local program=$1 line=${COMP_LINE:0:COMP_POINT} verb='' value='' argument=0 current word i
  local -a words home=()
  IFS=$' \t' read -ra words <<<"$line"
  [[ $line == *[[:blank:]] ]] && words+=('')
  current=${words[${#words[@]} - 1]}
  for ((i = 1; i < ${#words[@]} - 1; i++)); do
    word=${words[i]}
    if [[ $value ]]; then
      [[ $value == --home ]] && home=(--home "$word")
      value=''
    elif [[ $word == -* ]]; then
      _kvtele_takes_value "$verb:$word" && value=$word
    elif [[ $verb ]]; then
      argument=$((argument + 1))
    else
      verb=$word
    fi
  done
  COMPREPLY=()
  if [[ ! $value && $current == --*=* ]]; then
    value=${current%%=*}
    current=${current#*=}
  fi
  if [[ $value ]]; then
    _kvtele_offer "$verb:$value"
  elif [[ $current == -* ]]; then
    _kvtele_options "$verb"
  elif [[ $verb ]]; then
    _kvtele_offer "$verb:$argument"
  else
    _kvtele_verbs
  fi
}
complete -F _kvtele kvtele
