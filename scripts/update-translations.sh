#!/usr/bin/env bash
# Brings the user texts of src/ into every translations/KESTRAVIN_<language>.ts: new or changed
# texts arrive as unfinished entries, texts gone from the code are dropped. Then lists, per file,
# the texts still waiting for a translation. Fill them (Qt Linguist, or by hand between the
# <translation> tags, removing type="unfinished") and build: tst_translations fails while any is left.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh
lupdate=$(command -v lupdate || echo /usr/lib/qt5/bin/lupdate)
"$lupdate" -silent src -ts translations/KESTRAVIN_*.ts -no-obsolete -locations none

for ts in translations/KESTRAVIN_*.ts; do
  count=$(grep -c 'type="unfinished"' "$ts" || true)
  echo "$ts: $count to translate"
  # With -locations none the source line stands right above its translation.
  { grep -B1 'type="unfinished"' "$ts" || true; } | sed -n 's|^ *<source>\(.*\)</source>$|    \1|p'
done
