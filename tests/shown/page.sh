#!/usr/bin/env bash
# Opens the demo's page in a browser, as wide as a phone:  tests/shown/page.sh FOLDER
# Read as XML, so that it must be well-formed; a script, added to a copy, tells what the browser has made of it.
set -euo pipefail
browser=$(command -v chromium) || {
    echo "skipped: there is no browser (apt-get install chromium)"
    exit 77
}
folder=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work" "$folder/probe.xhtml"' EXIT

cat >"$work/probe.js" <<'JS'
addEventListener("load", () => {
    const lines = [];
    for (const heading of document.querySelectorAll("h1, h2")) lines.push("heading " + heading.textContent);
    for (const image of document.images)
        lines.push(`picture ${image.getAttribute("src")} ${image.naturalWidth}x${image.naturalHeight}`);
    for (const value of document.querySelectorAll(".tree code")) {
        const names = [];
        for (let item = value; (item = item.parentElement.closest("li"));)
            names.unshift(item.firstChild.textContent.replace(/ = $/, "").trim());
        lines.push(`${value.nextElementSibling.textContent}: ${names.join(" ")} = ${value.textContent}`);
    }
    const page = document.documentElement;
    lines.push(page.scrollWidth > innerWidth ? `wider than the window: ${page.scrollWidth}` : "fits");
    document.querySelector("body").textContent = "\n" + lines.join("\n") + "\n";
});
JS
{
    sed '/^<\/body>/,$d' "$folder/index.html"
    printf '<script><![CDATA[\n%s\n]]></script>\n</body>\n</html>\n' "$(cat "$work/probe.js")"
} >"$folder/probe.xhtml"
timeout 120 "$browser" --headless --no-sandbox --disable-gpu --user-data-dir="$work/profile" --window-size=390,800 \
    --dump-dom "file://$folder/probe.xhtml" >"$work/seen" 2>"$work/errors" ||
    { cat "$work/errors"; echo "the browser failed"; exit 1; }

cat >"$work/expected" <<'TEXT'
heading A survey, from settings to pictures
heading Settings of the site and of a user
heading A survey, triangulated
heading Materials and the drawing's profile
heading Pictures, filtered
heading Pictures, resized and saved
heading Numbers
user.env: [view] scale = 50
user.env: [view] layers layer@1 pen = 0.7
site.env: [view] layers layer@1 colour = 0,0,0
site.env: [view] layers layer@2 pen = 0.35
user.env: [print] paper = A4
site.env: [pens] widths = 0.13,0.18,0.25,0.35,0.5,0.7,1
picture landscape.png 640x480
picture small.png 240x180
picture large.png 320x320
fits
TEXT
failures=0
while IFS= read -r line; do
    grep -qxF -e "$line" "$work/seen" || { echo "not seen: $line"; failures=1; }
done <"$work/expected"
! grep ' 0x0$' "$work/seen" || { echo "not loaded"; failures=1; }
[ "$(grep -c '^picture ' "$work/seen")" -eq "$(grep -c '<img ' "$folder/index.html")" ] || failures=1
[ "$failures" -eq 0 ] || { sed -n '1,40p' "$work/seen"; exit 1; }
