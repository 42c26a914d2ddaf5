#!/usr/bin/env bash
# libvrcw32.so exports its C API and nothing else: every defined dynamic symbol is a ZEP_ name
# (or, with the panel, a member, vtable or typeinfo of its public classes CVrc and CVrxCtrl),
# and every ZEP_ function the public headers declare is among them.
set -euo pipefail
library=$1
include_dir=$2

# Global symbols only: sanitizer builds leave a few local (lower-case) entries in the table.
exported=$(nm -D --defined-only "$library" | awk '$(NF-1) ~ /^[A-Zu]$/ {print $NF}' | sort -u)
others=$(grep -vE '^(ZEP_|_ZNK?4CVrc|_ZNK?8CVrxCtrl|_ZT[VIS]8CVrxCtrl)' <<<"$exported" || true)
if [ -n "$others" ]; then
  echo "exported beyond the ZEP_ API:"
  echo "$others"
  exit 1
fi

declared=$(grep -hv '^#' "$include_dir"/vrcw32/zep*.h | grep -oE '\bZEP_[A-Za-z0-9_]+\(' |
           tr -d '(' | sort -u)
missing=$(comm -23 <(echo "$declared") <(echo "$exported"))
if [ -n "$missing" ]; then
  echo "declared in the public headers but not exported:"
  echo "$missing"
  exit 1
fi
echo "exports: $(grep -c '^ZEP_' <<<"$exported") ZEP_ functions and $(grep -vc '^ZEP_' <<<"$exported") panel symbols, nothing else"
