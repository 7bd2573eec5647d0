# A user's settings on top of the site's defaults: read, changed and written back.
cp "$root"/samples/settings/{site,user}.env "$out"
step "Settings of the site and of a user" \
    "The office keeps the defaults of its drawings in site.env. What the user has chosen stands in user.env; \
everything else is read from the site's file. What the user changes goes to user.env alone."
settings_tree user.env site.env
run bvutil env get user.env view scale --as long --fallback site.env --which
run bvutil env get user.env view layers@layer@2@name --fallback site.env --which
run bvutil env get user.env pens widths --as doubles --fallback site.env
run bvutil env get user.env print title --fallback site.env
run cp user.env user.before.env
run bvutil env set user.env view scale 20 --as long
run bvutil env set user.env view layers@layer@2@pen 0.35 --as double
run bvutil env remove user.env print printer
run diff -u --label user.before.env --label user.env user.before.env user.env || [ "$ran_code" -eq 1 ]
files site.env user.env user.before.env
