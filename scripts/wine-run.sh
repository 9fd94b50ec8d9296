#!/usr/bin/env bash
# Runs a program of the Windows build under Wine: quietly (no Wine debug channels, no dialogs
# offering Mono or Gecko) and in a Wine prefix of its own, made on first use, so a user's
# ~/.wine is never touched. Usage: scripts/wine-run.sh PROGRAM.exe [ARGS...]
set -euo pipefail
export WINEPREFIX="${VEXA_WINEPREFIX:-${XDG_CACHE_HOME:-${HOME:-/tmp}/.cache}/vexa-wine}"
export WINEDEBUG="${WINEDEBUG:--all}"
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-mscoree,mshtml=}"
wine=""
for candidate in wine64 /usr/lib/wine/wine64 wine; do
    if command -v "$candidate" >/dev/null 2>&1; then
        wine="$candidate"
        break
    fi
done
if [ -z "$wine" ]; then
    echo "wine-run: no wine64 found (scripts/build-windows.sh installs it)" >&2
    exit 127
fi
# The first use makes the prefix, once, even when tests start side by side.
if [ ! -f "$WINEPREFIX/system.reg" ]; then
    mkdir -p "$(dirname "$WINEPREFIX")"
    (
        flock 9
        if [ ! -f "$WINEPREFIX/system.reg" ]; then
            "$wine" wineboot --init >/dev/null 2>&1 || true
            "$(dirname "$(command -v "$wine")")/wineserver" -w 2>/dev/null || true
        fi
    ) 9>"$WINEPREFIX.lock"
fi
exec "$wine" "$@"
