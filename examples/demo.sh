# What `./dev demo` shows: the sample agent at work in scratch folders. Sourced by dev, whose names it
# uses: $root and $build, say, die and windows_path.

# The sample agent; without Wine's remark on every drive whose device it may not read.
agent() {
    { wine "$build/windows/bin/agent.exe" "$@" 2>&1 1>&3 9>&- |
        sed '/^wine: Read access denied/d' >&2; } 3>&1 &
    wait $!  # in the background, so that a signal ends the script at once
}

# Two inventories of a scratch folder with some changes in between.
demo_compare() {
    local tree=$1/tree old=$1/old.rec new=$1/new.rec
    rm -rf "$1"
    mkdir -p "$tree"
    printf 'stays as it is' >"$tree/same.txt"
    printf 'short' >"$tree/grows.txt"
    printf 'here today' >"$tree/goes.txt"
    agent inventory "$(windows_path "$tree")" "$(windows_path "$old")" >/dev/null
    printf 'no longer short' >"$tree/grows.txt"
    printf 'new here' >"$tree/größe.txt"
    rm "$tree/goes.txt"
    agent inventory "$(windows_path "$tree")" "$(windows_path "$new")" >/dev/null
    say "agent compare ${old#"$root"/} ${new#"$root"/}"
    agent compare "$(windows_path "$old")" "$(windows_path "$new")" || [ $? -eq 1 ]
}

# demo_watch LOG: the status server and one client, which stops it in the end.
demo_watch() {
    say "agent watch 0"
    : >"$1"
    agent watch 0 >"$1" &
    local server=$! port='' line answer
    until port=$(sed -n 's/^listening .* port //p' "$1") && [ -n "$port" ]; do
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

# demo_prepare FOLDER: a mount tree that comes and goes.
demo_prepare() {
    local tree=$1/mount/replica record=$1/made.rec
    say "agent prepare ${tree#"$root"/} ${record#"$root"/}"
    agent prepare "$(windows_path "$tree")" "$(windows_path "$record")"
    say "agent cleanup --dry-run ${record#"$root"/}"
    agent cleanup --dry-run "$(windows_path "$record")"
    say "agent cleanup ${record#"$root"/}"
    agent cleanup "$(windows_path "$record")"
}

# demo_notify FOLDER: a message for nobody to take, so the answer is that the service is missing.
demo_notify() {
    mkdir -p "$1"
    say "agent notify ${1#"$root"/} ..."
    agent notify "$(windows_path "$1")" agent@example.test admin@example.test 'disk full' \
        'Volume D: has no room left.' || [ $? -eq 2 ]
}
