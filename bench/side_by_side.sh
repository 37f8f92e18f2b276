#!/usr/bin/env bash
# The MealMaster import of the benchmark's 30,000 recipes side by side with AnyMeal (Debian's
# anymeal), each through its own windows on the same file, on a private X display: the time
# from Return in the file dialog to the closing summary, three runs each, the median printed.
# Needs anymeal, Xvfb, xdotool, xev and a built tree; prints nothing when one is missing. The clicks
# go to where each program puts its menus on a display without a window manager.
set -u
cd "$(dirname "$0")/.." || exit 1
for tool in anymeal Xvfb xdotool xev bc; do
  command -v "$tool" >/dev/null || { echo "side_by_side: $tool is not installed; no figures"; exit 0; }
done
work=$(mktemp -d)
export DISPLAY=:77 QT_QPA_PLATFORM=xcb
Xvfb "$DISPLAY" -screen 0 1280x1024x24 >/dev/null 2>&1 &
xvfb=$!
disown
trap 'pkill -x anymeal; pkill -x mirepan; pkill -x xev; kill $xvfb; rm -rf "$work"' EXIT
QT_QPA_PLATFORM=offscreen DISPLAY='' build/bench/bench_mealmaster --write "$work/collection.mmf" 2>/dev/null
sleep 1

waitFor() { # a window of that name, for at most about 30 s
  for _ in $(seq 1 1000); do xdotool search --name "^$1\$" >/dev/null 2>&1 && return 0; sleep 0.02; done
  return 1
}
# The moment a window of that name is mapped, seen as the X server reports it: polling for it
# would take the processor from the program being timed.
mappedAt() {
  local kind=
  xev -root -event substructure 2>/dev/null | while read -r line; do
    case "$line" in
    *" event, serial "*) kind=${line%% *} ;;
    "event 0x"*", window 0x"*)
      [ "$kind" = MapNotify ] || continue
      id=${line##*window }; id=${id%%,*}
      [ "$(xdotool getwindowname "$id" 2>/dev/null)" = "$1" ] && { date +%s.%N; break; } ;;
    esac
  done
}
# Types the file's name into the open file dialog, presses Return and waits for the summary.
timedImport() {
  xdotool type --delay 5 "$work/collection.mmf"; sleep 0.5
  mappedAt "$1" >"$work/end" &
  local watcher=$! start end
  sleep 0.3
  start=$(date +%s.%N); xdotool key Return
  for _ in $(seq 1 300); do [ -s "$work/end" ] && break; sleep 0.1; done
  pkill -x xev; wait "$watcher" 2>/dev/null
  end=$(cat "$work/end")
  [ -n "$end" ] || return 1
  echo "($end - $start) * 1000" | bc
}
anymealOnce() {
  rm -rf "${work:?}/home" && mkdir -p "$work/home"
  (HOME="$work/home" QT_QUICK_BACKEND=software anymeal >/dev/null 2>&1 &)
  waitFor AnyMeal && sleep 3
  xdotool windowactivate --sync "$(xdotool search --name '^AnyMeal$' | head -1)" 2>/dev/null
  xdotool mousemove 19 10 click 1; sleep 1; xdotool mousemove 80 34 click 1 # File, Import recipes
  waitFor "Import MealMaster Recipes" && sleep 0.5
  xdotool mousemove 368 304 click 1 # Proceed with selection of recipes
  waitFor "Import MealMaster Files" && sleep 0.5
  timedImport "Recipes Imported"
  pkill -x anymeal; sleep 1
}
mirepanOnce() {
  rm -rf "${work:?}/home" && mkdir -p "$work/home"
  (cd "$work/home" && MIREPAN_HOME="$work/home" MIREPAN_DATASOURCES="$work/home/datasources.ini" \
    "$OLDPWD/build/bin/mirepan" >/dev/null 2>&1 &)
  waitFor Mirepan && sleep 9 # the first start makes the database
  xdotool windowactivate --sync "$(xdotool search --name '^Mirepan$' | head -1)" 2>/dev/null
  xdotool mousemove 60 8 click 1; sleep 0.7; xdotool mousemove 108 29 click 1; sleep 0.7 # Tools, Transfer Files
  xdotool mousemove 270 119 click 1 # Import MealMaster...
  waitFor "Import MealMaster" && sleep 0.5
  timedImport "Import MealMaster"
  pkill -x mirepan; sleep 1
}
median() { sort -n | sed -n 2p; }
anymeal=$(for _ in 1 2 3; do anymealOnce; done | median)
mirepan=$(for _ in 1 2 3; do mirepanOnce; done | median)
printf 'side_by_side.anymeal.import_30000.ms: %.0f ms\n' "$anymeal"
printf 'side_by_side.mirepan.import_30000.ms: %.0f ms (goal: < %.0f ms, half of AnyMeal'"'"'s)\n' "$mirepan" "$(echo "$anymeal / 2" | bc -l)"
