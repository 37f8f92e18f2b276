#!/bin/sh
# A private PostgreSQL server for the tests and benchmarks: a fresh cluster in DIR, listening
# on the loopback address only, on the first free port from 55432 on.
#   scripts/pgserver.sh start DIR   starts it; DIR/port holds the port, DIR/user the user
#   scripts/pgserver.sh stop DIR    stops it and removes DIR
#   scripts/pgserver.sh halt DIR    stops it and keeps its data (a server gone away)
#   scripts/pgserver.sh resume DIR  starts a halted server again on its port
# The cluster itself lives in a directory of its own under /tmp (named in DIR/cluster), which
# the server's account can reach wherever DIR is. It trusts local connections and skips
# fsync: it holds test data only.
set -eu
command=${1:?start or stop}
dir=${2:?a directory}
bin=$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -n 1)
if [ -z "$bin" ]; then
    echo "pgserver: PostgreSQL is not installed (Debian: postgresql postgresql-contrib)" >&2
    exit 1
fi
# The server refuses to run as root; there it runs as the postgres account the package made.
as_owner() {
    if [ "$(id -u)" = 0 ]; then runuser -u postgres -- "$@"; else "$@"; fi
}

case $command in
start)
    "$0" stop "$dir"
    mkdir -p "$dir"
    cluster=$(mktemp -d /tmp/mirepan-pg.XXXXXX)
    echo "$cluster" >"$dir/cluster"
    if [ "$(id -u)" = 0 ]; then chown postgres "$cluster"; fi
    as_owner "$bin/initdb" -D "$cluster/data" -U mirepan -A trust -E UTF8 --locale=C.UTF-8 --no-sync \
        >"$dir/initdb.log" 2>&1 || { cat "$dir/initdb.log" >&2; exit 1; }
    port=55432
    while [ $port -lt 55532 ]; do
        if as_owner "$bin/pg_ctl" -D "$cluster/data" -l "$cluster/server.log" -w -t 30 \
            -o "-p $port -k $cluster -c listen_addresses=127.0.0.1 -c fsync=off -c synchronous_commit=off -c full_page_writes=off" \
            start >/dev/null 2>&1; then
            echo $port >"$dir/port"
            echo mirepan >"$dir/user"
            echo "pgserver: listening on 127.0.0.1:$port"
            exit 0
        fi
        port=$((port + 1))
    done
    cat "$cluster/server.log" >&2
    exit 1
    ;;
halt)
    as_owner "$bin/pg_ctl" -D "$(cat "$dir/cluster")/data" -m fast -w stop >/dev/null
    ;;
resume)
    cluster=$(cat "$dir/cluster")
    as_owner "$bin/pg_ctl" -D "$cluster/data" -l "$cluster/server.log" -w -t 30 \
        -o "-p $(cat "$dir/port") -k $cluster -c listen_addresses=127.0.0.1 -c fsync=off -c synchronous_commit=off -c full_page_writes=off" \
        start >/dev/null
    ;;
stop)
    if [ -f "$dir/cluster" ]; then
        cluster=$(cat "$dir/cluster")
        as_owner "$bin/pg_ctl" -D "$cluster/data" -m immediate stop >/dev/null 2>&1 || true
        rm -rf "$cluster"
    fi
    rm -rf "$dir"
    ;;
*)
    echo "pgserver: start, stop, halt or resume" >&2
    exit 2
    ;;
esac
