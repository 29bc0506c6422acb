# shellcheck shell=bash disable=SC2154
# What `./dev demo` shows: the sample agent at work in scratch folders. Sourced by dev, whose names it
# uses: $root, $build, $wine, say, die and run.

# The sample agent, without Wine's remark on every drive whose device it may not read.
agent() { "$wine" run "$build/windows/bin/agent.exe" "$@" | sed -u '/^wine: Read access denied/d'; }
path() { "$wine" path "$1"; }

demo() {
    local folder=$build/demo skip=()
    [ "$1" != "$root" ] || skip=(--skip build --skip .git)
    rm -rf "$folder"
    mkdir -p "$folder"
    say "agent inventory ${skip[*]:+${skip[*]} }$1"
    run agent inventory "${skip[@]}" "$(path "$1")" "$(path "$build/inventory.rec")" ||
        die "cannot list all of '$1'; see the messages above"
    demo_compare "$folder/tree" "$folder/old.rec" "$folder/new.rec"
    say "agent report"
    run agent report
    demo_watch "$folder/watch.log"
    demo_prepare "$folder/mount/replica" "$folder/made.rec"
    demo_notify "$folder/pickup"
    cat <<'EOF'

Every step of the demo ended as it should. To try next:
  ./dev test                                             run every test (some minutes)
  ./dev wine build/windows/bin/agent.exe help            see what else the agent does
  ./dev package                                          make the package for your own programs
EOF
}

# demo_compare TREE OLD NEW: two inventories of a tree with some changes in between.
demo_compare() {
    mkdir "$1"
    printf 'stays as it is' >"$1/same.txt"
    printf 'short' >"$1/grows.txt"
    printf 'here today' >"$1/goes.txt"
    run agent inventory "$(path "$1")" "$(path "$2")" >/dev/null
    printf 'no longer short' >"$1/grows.txt"
    printf 'new here' >"$1/größe.txt"
    rm "$1/goes.txt"
    run agent inventory "$(path "$1")" "$(path "$3")" >/dev/null
    say "agent compare ${2#"$root/"} ${3#"$root/"}"
    run agent compare "$(path "$2")" "$(path "$3")" || [ $? -eq 1 ]  # 1: there are differences
}

# demo_watch LOG: the status server and one client, which stops it in the end.
demo_watch() {
    say "agent watch 0"
    agent watch 0 >"$1" </dev/null 9>&- &
    local server=$! port='' line answer
    until port=$(sed -n 's/^listening .* port //p' "$1" | tr -d '\r') && [ -n "$port" ]; do
        kill -0 "$server" 2>/dev/null || die "the status server did not start"
        sleep 0.1
    done
    cat "$1"
    exec 4<>"/dev/tcp/127.0.0.1/$port"
    for line in status time 'echo hello' quit; do
        printf '%s\n' "$line" >&4
        read -r -t 10 answer <&4 || die "no answer to '$line'"
        printf '  %-10s  %s\n' "$line" "$answer"
    done
    exec 4>&-
    wait "$server"
    tail -n 1 "$1"
}

# demo_prepare TREE RECORD: a mount tree that comes and goes.
demo_prepare() {
    say "agent prepare ${1#"$root/"} ${2#"$root/"}"
    run agent prepare "$(path "$1")" "$(path "$2")"
    say "agent cleanup --dry-run ${2#"$root/"}"
    run agent cleanup --dry-run "$(path "$2")"
    say "agent cleanup ${2#"$root/"}"
    run agent cleanup "$(path "$2")"
}

# demo_notify FOLDER: a message into a folder that no mail server watches. The agent then ends with 2.
demo_notify() {
    mkdir "$1"
    say "agent notify ${1#"$root/"} ..."
    run agent notify "$(path "$1")" agent@example.test admin@example.test 'disk full' \
        'Volume D: has no room left.' || [ $? -eq 2 ] || die "the message was not dropped"
    say "The message is complete and in the folder. send() returned -1 because no mail server runs here"
    say "that would pick it up."
}
