#!/usr/bin/env bash
# Dependencies point one way: fails when a file includes a header of a layer above its own.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# layer: the folders of src/ whose headers it may include, beside its own
declare -A allowed=(
  [platform]=""
  [imaginglib]="platform"
  [handles]="platform"
  [cleanup]="imaginglib handles platform"
  [redeye]="imaginglib handles platform"
  [regions]="imaginglib handles platform"
  [bridge]="platform"
  [front]="bridge cleanup redeye regions imaginglib handles platform"
)

status=0
for layer in "${!allowed[@]}"; do
  while IFS=: read -r file line; do
    folder=$(sed -E 's/.*"([a-z]+)\/.*/\1/' <<<"$line")
    case " $layer ${allowed[$layer]} " in
      *" $folder "*) ;;
      *)
        echo "$file includes a header of $folder, which lies above $layer"
        status=1
        ;;
    esac
  done < <(grep -rE --include='*.h' --include='*.cpp' '^#include "[a-z]+/' "src/$layer" || true)
done

# The modules know the platform and the contract, nothing else of the toolkit.
if grep -rnE --include='*.h' --include='*.cpp' '^#include "(front|imaginglib|handles|cleanup|redeye|regions)/|^#include "bridge/[^v]' providers; then
  echo "a module includes more of the toolkit than the contract"
  status=1
fi
# The client is an application like any other: public headers alone.
if grep -rnE '^#include "(platform|front|bridge|imaginglib|handles|cleanup|redeye|regions)/' apps examples; then
  echo "an application includes a private header"
  status=1
fi
exit $status
