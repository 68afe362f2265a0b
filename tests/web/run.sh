#!/usr/bin/env bash
# Tests the HTML pages in the machine's Chromium. Installs what is missing; safe to run twice.
#
# usage: tests/web/run.sh [BUILD FOLDER]    (default: build; the program is built there already)
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
build=$(cd "$root" && cd "${1:-build}" && pwd)
. "$root/scripts/packages.sh"
require_packages "${web_packages[@]}"
. "$root/scripts/node.sh"

echo "the committed pages are what host/web builds"
clean_install "$root/host/web"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
(cd "$root/host/web" && npx --no-install tsc --noEmit && node build.mjs "$work/dist")
for page in report.html network.html live.html; do
  cmp "$work/dist/$page" "$root/host/web/dist/$page" && continue
  echo "host/web/dist/$page is not what its sources build: run 'npm run build' in host/web and commit it" >&2
  exit 1
done

data=${ORSOLVA_SHARED:-$root/../shared}/data
observations=$data/ESBC00DNK_R_20201770000_01D_30S_MO.crx.gz
navigation=$data/ESBC00DNK_R_20201770000_01D_MN.rnx.gz
if [ ! -e "$observations" ]; then
  echo "the shared data folder is missing next to the checkout: no station-day to plot" >&2
  exit 1
fi

"$build/bin/orsolva" qc --no-config --json --sats --series "$work/station.csv" --html "$work/station.html" "$observations" "$navigation" >"$work/station.json"

# A file whose name and marker are markup.
hostile="$work/<img src=x onerror=hacked=1>.rnx"
marker='</script><img src=x onerror=window.hacked=1>'
sed -e "s|^.*MARKER NAME *\$|$(printf '%-60s' "$marker")MARKER NAME|" "$data/SEPT078M.21O" >"$hostile"
grep -q '</script><img' "$hostile"
"$build/bin/orsolva" qc --no-config --html "$work/hostile.html" "$hostile" "$data/SEPT078M.21P" >/dev/null

# The demo day, whose faults are known.
"$build/bin/orsolva" simulate --preset station-day --output "$work/demo" >/dev/null
"$build/bin/orsolva" qc --no-config --html "$work/demo.html" "$work"/demo/*_MO.rnx "$work"/demo/*_MN.rnx >/dev/null

# A network: good, failing and broken files, some of whose names are markup or would be a link's scheme.
network=$work/network
mkdir "$network"
for name in 'one.21O' 'two words.21O' '<img src=x onerror=hacked=1>.rnx' 'javascript:hacked=1.rnx' 'index.rnx'; do
  cp "$data/SEPT078M.21O" "$network/$name"
done
awk '/^>/ && ++epochs > 90 { exit } { print }' "$data/SEPT078M.21O" >"$network/short.21O"
head -c 500000 "$data/SEPT078M.21O" >"$network/damaged.21O"
echo '<script>hacked=1</script>' >"$network/<script>hacked=1<script>.rnx"
echo 'no observations' >"$network/empty.21O"
cp "$network/empty.21O" "$network/empty as well.21O"
cat >"$network/strict.toml" <<'END'
name = "strict"
title = "next to no multipath"
[[criterion]]
name = "multipath"
figure = "mp_rms_m"
scope = "system"
systems = "G"
signals = ["L1"]
at_most = { good = 0.20, fair = 0.22 }
source = "this test"
END
"$build/bin/orsolva" qc --no-config --quiet --output "$network/reports" --formats html --profile "$network/strict.toml" \
  "$network"/*.21O "$network"/*.rnx --nav "$data/SEPT078M.21P" 2>/dev/null || [ $? -eq 1 ]

# Two stations on two days.
"$build/bin/orsolva" qc --no-config --quiet --output "$work/days" --formats html \
  "$data/SEPT078M.21O" "$data/KMS300DNK_R_20221591000_01H_30S_MO.crx" --nav "$data/SEPT078M.21P"

clean_install "$here"
NETWORK=$network/reports/index.html DAYS=$work/days/index.html DEMO=$work/demo.html DEMO_TRUTH=$work/demo/truth.json \
  REPORT=$work/station.html REPORT_JSON=$work/station.json REPORT_SERIES=$work/station.csv HOSTILE=$work/hostile.html \
  node --test --test-reporter=spec "$here/page.test.mjs" "$here/network.test.mjs" "$here/colors.test.mjs"

if [ -x "$build/bin/live_sample_server" ]; then
  LIVE_SERVER=$build/bin/live_sample_server node --test --test-reporter=spec "$here/live.test.mjs"
else
  echo "built without a server: the page of live stations is not tested" >&2
fi
