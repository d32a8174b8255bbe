#!/bin/bash
# Tests the help, the manual page and the completions: reference_test.sh INSPECTOR
PATH=$(dirname "$1"):$PATH
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 2
touch message.hex
mkdir folder
failures=0

fail() {
    echo "$1"
    failures=$((failures + 1))
}

# The help: no long lines, and and an example of each verb, none of which is wrong use.
verbs=$(quorvaxdr --complete '' | cut -f 1)
for verb in '' $verbs; do
    quorvaxdr $verb --help >help
    awk 'length > 120' help | grep . && fail "$verb --help: a long line"
    [ -z "$verb" ] || grep -q "^  .*quorvaxdr $verb" help || fail "$verb --help: no example"
done
for verb in $verbs; do
    while IFS= read -r example; do
        eval "$(echo "$example" | sed 's/.*quorvaxdr/quorvaxdr/; s/|.*//; s/[<>].*//')" </dev/null >/dev/null 2>errors
        [ $? -ne 2 ] || fail "$example: $(cat errors)"
    done < <(quorvaxdr "$verb" --help | awk '/^Examples:/ { on = 1; next } /^$/ { on = 0 } on')
done

# The manual page: no warnings, and every option of every verb.
quorvaxdr --man >quorvaxdr.1
if command -v groff >/dev/null; then
    groff -ww -man -Tutf8 quorvaxdr.1 2>&1 >page.txt | grep . && fail "groff warns"
fi
for verb in $verbs; do
    for option in $(quorvaxdr --complete "$verb" - | cut -f 1); do
        grep -qF -- "${option//-/\\-}" quorvaxdr.1 || fail "the manual page lacks $option of $verb"
    done
done

# What the shells offer, in a line, for a line that ends at the cursor.
quorvaxdr --completion bash >completion.bash
quorvaxdr --completion zsh >completion.zsh
quorvaxdr --completion fish >completion.fish
# shellcheck disable=SC1091
. ./completion.bash
bashOffers() {
    read -ra COMP_WORDS <<<"${1//=/ = }"
    [[ $1 != *' ' ]] || COMP_WORDS+=('')
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    _quorvaxdr quorvaxdr
    echo "${COMPREPLY[@]}"
}
fishOffers() {
    HOME=$folder fish -c "source completion.fish; complete -C '$1'" | cut -f 1 | sort | tr '\n' ' ' | sed 's/ $//'
}
while IFS='|' read -r line expected; do
    offered=$(bashOffers "$line")
    [ "$offered" = "$expected" ] || fail "bash, $line: $offered"
    command -v fish >/dev/null || continue
    offered=$(fishOffers "$line")
    sorted=$(echo "$expected" | tr ' ' '\n' | sort | tr '\n' ' ' | sed 's/ $//')
    [ "${offered//\//}" = "${sorted//\//}" ] || fail "fish, $line: $offered"
done <<'END'
quorvaxdr de|decode describe
quorvaxdr --completion |bash zsh fish
quorvaxdr decode JobI|JobId JobIdList
quorvaxdr decode JobId mess|message.hex
quorvaxdr decode JobId -I f|folder
quorvaxdr decode --from |raw hex base64 json pcap
quorvaxdr decode JobId --fr|--from --framed
quorvaxdr types --module jobs/cov|jobs/covers
quorvaxdr annotate JobMngParameters message.hex --path /jobI|/jobId /jobId/service /jobId/job
quorvaxdr annotate JobAVPSeq --path /12/i|/12/id
quorvaxdr decode JobId message.hex |
quorvaxdr nothing |
END
offered=$(bashOffers 'quorvaxdr decode --from=h')  # bash splits the word at "="
[ "$offered" = hex ] || fail "bash, --from=h: $offered"
if command -v zsh >/dev/null; then
    zsh -n completion.zsh || fail "zsh refuses its script"
fi
echo "$failures failures"
[ $failures -eq 0 ]
