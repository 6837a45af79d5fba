#!/usr/bin/env bash
# Sets the machine up, builds, and opens the editor on FILE (the bundled sample page without one).
# Without a display the editor renders the view to a PNG and says where it put it.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
scripts/build.sh release
exec build/zentrel-edit "$@"
