#!/usr/bin/env bash
# Judges folders of tool outputs, and compares the verdicts with those in tests/data/verdicts.json.
#   scripts/judge_folder.sh FOLDER... [--keep FOLDER] [--learn]
# The outputs are in folders named after their tools, FOLDER/TOOL/COMMAND[__MACHINE].txt, such as
# storcli/c0_show__node31.txt; scripts/judge_folder.py lists the commands. Each text is judged by
# itself, and those of one machine together as well.
#   --keep FOLDER   leave the recordings in this new folder
#   --learn         add verdicts of texts that are not known yet, once they have been read by eye
set -euo pipefail
root=$(dirname "$0")/..
"$root/scripts/build.sh" native pqhost
exec python3 "$root/scripts/judge_folder.py" "$root/build/native/bin/pqhost" "$@"
