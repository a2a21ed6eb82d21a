# shellcheck shell=bash
# Comparisons of standard input with the files in tests/golden; sourced by the checks.
golden=$(dirname "$(realpath "${BASH_SOURCE[0]}")")/golden

# check_text FILE: replaces the file instead if UPDATE_GOLDEN is set.
check_text() {
    [[ -z ${UPDATE_GOLDEN-} ]] || { cat >"$golden/$1"; return; }
    diff "$golden/$1" - >&2
}

# check_json FILE: the file has a line for each part of the JSON, down to three levels.
check_json() {
    jq -r 'paths as $path | getpath($path) as $part | ($path | length) as $level |
        select($level == 3 or ($level < 3 and [$part[]?] == [])) |
        "\($path | map(tostring) | join(".")) \($part | tojson)"' | check_text "$1"
}

# check_gnuplot FILE: the file has the script, with one line for the settings of each panel and one
# for each block of data: the number of rows, and for each column the sum of the values, each
# multiplied by the number of its row.
check_gnuplot() {
    awk '/^(un)?set / { settings = settings separator $0; separator = "; "; next }
         settings != "" { print settings; settings = separator = "" }
         / << END$/ { start = $0; rows = 0; labels = ""; split("", sums); next }
         start == "" { print; next }
         /^END$/ { printf "%s %d rows:", start, rows
                   for (i = 1; i in sums; ++i) printf " %.15g", sums[i]
                   print labels; start = ""; next }
         { ++rows; for (i = 1; i <= NF; ++i) sums[i] += rows * $i
           if (/"/) labels = labels " " $0 }
         END { print settings }' | check_text "$1"
}
