# Settings: a user's file on top of the site's defaults, read, changed and written back.
cp "$root"/samples/settings/{site,user}.env "$out"
cp "$out/user.env" "$out/user.before.env"

echo "== Settings of a drawing program"
bvutil env show site.env
bvutil env get user.env view scale --as long --fallback site.env --which
bvutil env get user.env view layers@layer@2@name --fallback site.env --which
bvutil env get user.env pens widths --as doubles --fallback site.env
bvutil env get user.env print title --fallback site.env
bvutil env set user.env view scale 20 --as long
bvutil env set user.env view layers@layer@2@pen 0.35 --as double
bvutil env remove user.env print printer
bvutil env show user.env
printf '\n$ diff -u user.before.env user.env\n'
(cd "$out" && diff -u --label user.before.env --label user.env user.before.env user.env) | tr -d '\r' || true
