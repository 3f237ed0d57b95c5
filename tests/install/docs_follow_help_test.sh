# The man pages and bash completions say what the programs' own --help says: every command
# and batch action with its usage and text, every option.
# Arguments: GALLEY VELLUMINE
galley=$1
vellumine=$2
source "$(dirname "$0")/checks.sh"

man_dir="$VLM_SOURCE_DIR/docs/man"
completions="$VLM_SOURCE_DIR/packaging/completions"
# Man pages rendered as plain text, and any text, with all white space as single blanks;
# backquotes in --help texts are markup the man page expresses as bold.
flat() { tr -s ' \n' '  ' | tr -d '`' | sed 's/^ //; s/ $//'; }
render() { groff -man -Tascii -rLL=250n -rHY=0 -P-cbou "$1" 2>/dev/null | flat; }
expect_in() {
    [[ $2 == *"$1"* ]] || fail "$3 lacks: $1"
}
expect_options_completed() {
    local option
    for option in $(grep -oE -- '--[a-z][a-z-]*' <<<"$1" | sort -u); do
        grep -qF -- "$option" "$2" || fail "$(basename "$2") completion lacks $option"
    done
}

vellumine_man=$(render "$man_dir/vellumine.1")
commands=$("$vellumine" --help | sed -n 's/^  \([a-z][a-z-]*\).*/\1/p')
[[ $(wc -w <<<"$commands") -ge 5 ]] || fail "no commands found in vellumine --help"
for command in $commands; do
    help=$("$vellumine" "$command" --help)
    expect_in "$(sed -n '1s/^usage: vellumine //p' <<<"$help")" "$vellumine_man" "vellumine(1)"
    expect_in "$(sed '1,2d' <<<"$help" | flat)" "$vellumine_man" "vellumine(1)"
    grep -qw -- "$command" "$completions/vellumine" || fail "vellumine completion lacks $command"
    expect_options_completed "$help" "$completions/vellumine"
done

galley_man=$(render "$man_dir/galley.1")
usage=$("$galley" --help)
batch_usage=$("$galley" --batch --help)
while read -r line; do
    expect_in "$line" "$galley_man" "galley(1)"
done < <(sed -n 's/^\(usage: \|       \)\(galley.*\)/\2/p' <<<"$usage")
# Each action: its line and the indented lines that continue it.
actions=$(awk '/^  [a-z]/ { if (entry) print entry; entry = $0; next }
               /^      / && entry { entry = entry " " $0; next }
               { if (entry) print entry; entry = "" }' <<<"$batch_usage")
[[ $(wc -l <<<"$actions") -ge 8 ]] || fail "no actions found in galley --batch --help"
while read -r entry; do
    expect_in "$(flat <<<"$entry")" "$galley_man" "galley(1)"
    grep -qw -- "${entry%% *}" "$completions/galley" || fail "galley completion lacks ${entry%% *}"
done < <(sed 's/^ *//' <<<"$actions")
expect_in "$(sed -n '/^A dialog/,/^$/p' <<<"$batch_usage" | flat)" "$galley_man" "galley(1)"
expect_options_completed "$usage $batch_usage" "$completions/galley"
echo "docs follow --help: OK"
