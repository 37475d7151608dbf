#!/usr/bin/env bash
# Signs a program or an installer for Windows, in place.
#
#   packaging/sign.sh FILE...
#
# TIDYFOLD_SIGNING_KEY names the key and its certificates (PKCS #12), TIDYFOLD_SIGNING_PASSWORD a file with its
# password, TIDYFOLD_SIGNING_TIMESTAMP the address of a timestamp server (RFC 3161). Without a key the files stay
# unsigned, which is said and is no failure; without the others, there is no password and no timestamp.
set -euo pipefail

if [[ -z ${TIDYFOLD_SIGNING_KEY:-} ]]; then
  echo "Unsigned, as TIDYFOLD_SIGNING_KEY names no key: $(basename -a "$@" | paste -sd ' ')"
  exit 0
fi
options=(-pkcs12 "$TIDYFOLD_SIGNING_KEY" -h sha256 -n Tidyfold)
if [[ -n ${TIDYFOLD_SIGNING_PASSWORD:-} ]]; then options+=(-readpass "$TIDYFOLD_SIGNING_PASSWORD"); fi
if [[ -n ${TIDYFOLD_SIGNING_TIMESTAMP:-} ]]; then options+=(-ts "$TIDYFOLD_SIGNING_TIMESTAMP"); fi
for file in "$@"; do
  osslsigncode sign "${options[@]}" -in "$file" -out "$file.signed" >/dev/null
  mv "$file.signed" "$file"
  echo "Signed: $(basename "$file")"
done
