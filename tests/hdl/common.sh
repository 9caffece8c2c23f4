# For the scripts of this folder, which take BUILD-FOLDER and WORK-FOLDER: changes to the work folder, an empty one.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$(cd "$here/../.." && pwd)
build=$1
rm -rf "$2"
mkdir -p "$2"
cd "$2"
