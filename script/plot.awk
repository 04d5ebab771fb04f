# SPDX-License-Identifier: MIT
#
# Draws lines of "form engine size nanoseconds", sorted by all three, as one curve for each form and
# engine, on logarithmic scales.
function x(size) { return 70 + 100 * (log(size) - log(400)) / log(10) }
function y(time) { return 360 - 60 * (log(time) - log(10000)) / log(10) }
function text(at, height, anchor, words) {
    printf "<text x='%.0f' y='%.0f' text-anchor='%s'>%s</text>\n", at, height, anchor, words
}
function finish() {
    if (points == "" || form " " engine == "binary floor") return
    printf "<polyline class='%s %s' points='%s'/>\n", form, engine, points
    shown++
    printf "<polyline class='%s %s' points='560,%d 590,%d'/>\n", form, engine, 40 + 22 * shown, 40 + 22 * shown
    text(598, 44 + 22 * shown, "start", engine == "floor" ? "floor" : engine " from " form)
}
BEGIN {
    print "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 720 410' font-family='sans-serif'" \
        " font-size='12'>"
    print "<style>svg{background:#fff;color:#222}text{fill:currentColor}" \
        "line{stroke:currentColor;stroke-opacity:.15}polyline{fill:none;stroke-width:2}" \
        ".binary{stroke-dasharray:5 3}.floor{stroke:#888}.ours{stroke:#0a7d38}" \
        ".pugixml{stroke:#b35900}.libplist{stroke:#7a3fb0}" \
        "@media (prefers-color-scheme:dark){svg{background:#16181c;color:#ddd}" \
        ".floor{stroke:#999}.ours{stroke:#4cd07d}.pugixml{stroke:#ff9d45}" \
        ".libplist{stroke:#c493f5}}</style>"
    print "<rect width='720' height='410' style='fill:none'/>"
    split("10 µs,100 µs,1 ms,10 ms,100 ms,1 s", times, ",")
    for (i = 1; i <= 6; i++) {
        height = y(10 ^ (i + 3))
        printf "<line x1='70' x2='540' y1='%.0f' y2='%.0f'/>\n", height, height
        text(62, height + 4, "end", times[i])
    }
    split("400,4096,65536,1048576,16777216", sizes, ",")
    split("0.4 KB,4 KB,64 KB,1 MB,16 MB", names, ",")
    for (i = 1; i <= 5; i++) text(x(sizes[i]), 382, "middle", names[i])
    text(305, 402, "middle", "size of the settings; what it takes to set two keys and write them")
}
$1 != form || $2 != engine { finish(); points = "" }
{
    form = $1; engine = $2; size = $3; time = $4
    points = points sprintf("%.1f,%.1f ", x(size), y(time))
}
END {
    finish()
    print "</svg>"
}
