# The answer of "bvutil env show FILE --fallback SITE --which --json" as nested lists in HTML.
def title: (.name | @html) + (if .occurrence then "@\(.occurrence)" else "" end);
def origin: "<span class=\"\(if .file == $top then "user" else "site" end)\">\(.file | @html)</span>";
def element:
    if has("elements") then "<li>\(title)\n<ul>\n\([.elements[] | element] | add // "")</ul></li>\n"
    else "<li>\(title) = <code>\(.value | @html)</code> \(origin)</li>\n" end;
"<ul class=\"tree\">",
(.sections[] | "<li><b>[\(.name | @html)]</b>\n<ul>\n\([.elements[] | element] | add // "")</ul></li>"),
"</ul>"
