#!/usr/bin/env bash
# The core's folders form one ladder, lowest first. A file may include its own
# folder and any folder below it, never one above: that keeps every subsystem
# readable without the ones built on top of it. Adapters (src/posix) stand
# beside the core and may include only the ports and the shared basics.
set -euo pipefail
cd "$(dirname "$0")/.."

ladder=(platform base config lyric net display core editor)
declare -A rung
for i in "${!ladder[@]}"; do rung[${ladder[$i]}]=$i; done
rung[posix]=${rung[base]}

bad=0
checked=0
while IFS= read -r file; do
    folder=$(cut -d/ -f2 <<<"$file")
    [ -n "${rung[$folder]+x}" ] || continue
    mine=${rung[$folder]}
    while IFS=: read -r line target; do
        target_folder=${target%%/*}
        [ "$target_folder" = "$folder" ] && continue
        if [ -z "${rung[$target_folder]+x}" ] || [ "${rung[$target_folder]}" -gt "$mine" ] ||
            [ "$target_folder" = posix ]; then
            echo "$file:$line: includes \"$target\", above $folder/"
            bad=$((bad + 1))
        fi
    done < <(grep -n -o -E '^#include "[^"]+/[^"]+"' "$file" | sed -E 's/^([0-9]+):#include "(.*)"/\1:\2/')
    checked=$((checked + 1))
done < <(find src -name '*.h' -o -name '*.cpp' | sort)

echo "layers: ${ladder[*]} (posix beside base); $checked files checked, $bad includes point upward"
[ "$bad" = 0 ]
