# Writes the demo's page: one HTML file, well-formed as XML too, with its pictures beside it. Sourced by
# samples/demo.sh. The page is made of sections, and above them stands a table of what each took.

# Text for HTML. What tells of this machine, the demo's folder and the user's name, becomes "...".
html() {
    local here=:${out//\//\\}
    local text=${1//[Zz]"$here"/...}
    sed 's/\\users\\[^\\]*/\\users\\.../; s/&/\&amp;/g; s/</\&lt;/g; s/>/\&gt;/g; s/"/\&quot;/g' <<<"$text"
}
# Microseconds as seconds.
seconds() { printf '%d.%03d s' "$(($1 / 1000000))" "$(($1 / 1000 % 1000))"; }

begin_page() {
    page_body= page_steps= page_open= page_number=0
    page_commands=0 page_work=0 page_total=0
}

# Ends what stands open: a row of pictures, or a whole section.
close_pictures() {
    [ "$page_open" != pictures ] || page_body+=$'</div>\n'
    page_open=section
}
close_section() {
    [ -n "$page_open" ] || return 0
    close_pictures
    page_body+=$'</section>\n'
    page_steps+="<tr><td><a href=\"#step$page_number\">$page_title</a></td><td>$page_commands</td>"
    page_steps+="<td>$(seconds "$page_work")</td><td>$(seconds "$page_total")</td></tr>"$'\n'
    page_open=
}

# Begins a step of the story:  step TITLE TEXT
step() {
    printf '\n== %s\n' "$1"
    close_section
    page_number=$((page_number + 1)) page_title=$(html "$1")
    page_commands=0 page_work=0 page_total=0
    page_body+="<section id=\"step$page_number\">"$'\n'"<h2>$page_title</h2>"$'\n'"<p>$(html "$2")</p>"$'\n'
    page_open=section
}

# What the last command took; counts it for the step.
page_time() {
    page_commands=$((page_commands + 1))
    page_total=$((page_total + ran_total))
    page_work=$((page_work + ${ran_work:-0}))
    page_body+='<p class="time">'
    [ -z "$ran_work" ] || page_body+="work $(seconds "$ran_work") · "
    page_body+="in all $(seconds "$ran_total")</p>"$'\n'
}

page_command() { page_body+="<pre><b>\$ $(html "$ran_line")</b>"; }

page_run() {
    close_pictures
    page_body+=$'<div class="run">\n'
    page_command
    [ -z "$ran_output" ] || page_body+=$'\n'$(html "$ran_output")
    [ "$ran_code" -eq 0 ] || page_body+=$'\n'"<i>exit code $ran_code</i>"
    page_body+=$'</pre>\n'
    page_time
    page_body+=$'</div>\n'
}

# A picture that the last command has made:  page_picture FILE.png CAPTION
page_picture() {
    local size
    # Width and height stand behind the signature and the first chunk's head.
    read -r -a size < <(od -An -tu4 --endian=big -j16 -N8 "$out/$1")
    if [ "$page_open" != pictures ]; then
        page_body+=$'<div class="pictures">\n'
        page_open=pictures
    fi
    page_body+="<figure><a href=\"$1\"><img src=\"$1\" width=\"${size[0]}\" height=\"${size[1]}\" "
    page_body+="alt=\"$(html "$2")\"/></a>"$'\n'"<figcaption>$(html "$2")</figcaption>"$'\n'
    page_command
    [ -z "$ran_output" ] || page_body+=$'\n'$(html "$ran_output")
    page_body+=$'</pre>\n'
    page_time
    page_body+=$'</figure>\n'
}

# The settings of a file and those below it as a tree, in the page one of HTML:  settings_tree FILE FALLBACK
settings_tree() {
    measure bvutil env show "$1" --fallback "$2" --which
    print_run
    measure bvutil env show "$1" --fallback "$2" --which --json
    [ "$ran_code" -eq 0 ] || return "$ran_code"
    close_pictures
    page_body+=$'<div class="run">\n'
    page_command
    page_body+=$'</pre>\n'
    page_body+=$(jq -r --arg top "$1" -f "$root/samples/demo/tree.jq" <<<"$ran_output")$'\n'
    page_time
    page_body+=$'</div>\n'
}

# Files that the step has left:  files NAME...
files() {
    local name links=
    close_pictures
    for name; do
        links+="${links:+, }<a href=\"$name\">$name</a>"
    done
    page_body+="<p class=\"files\">Files: $links</p>"$'\n'
}

end_page() {
    close_section
    measure bvutil --version
    {
        printf '<!DOCTYPE html>\n<html xmlns="http://www.w3.org/1999/xhtml" lang="en">\n<head>\n'
        printf '<meta charset="utf-8"/>\n'
        printf '<meta name="viewport" content="width=device-width, initial-scale=1"/>\n'
        printf '<title>A survey, from settings to pictures</title>\n<style>\n'
        cat "$root/samples/demo/page.css"
        printf '</style>\n</head>\n<body>\n<h1>A survey, from settings to pictures</h1>\n'
        printf '<p>What a drawing office does with BvUtil: the settings of the site under those of a user, a survey '
        printf 'triangulated, textured pictures filtered, resized and saved. Each picture and value stands '
        printf 'with the command that made it.</p>\n'
        printf '<table>\n<caption>What each step took</caption>\n'
        printf '<tr><th>step</th><th>commands</th><th>work</th><th>in all</th></tr>\n%s</table>\n' "$page_steps"
        printf '<p class="note">“Work” is what bvutil’s option <code>--time</code> tells, which was added to each of '
        printf 'its commands; “in all” is the wall clock, with the start of each program under Wine.</p>\n'
        printf '%s' "$page_body"
        printf '<footer>%s, %s, %s</footer>\n' "$(html "$ran_output")" "$(html "$(wine --version)")" "$(date -u +%F)"
        printf '</body>\n</html>\n'
    } >"$out/index.html"
}
