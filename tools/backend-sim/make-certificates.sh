#!/usr/bin/env bash
# Makes a throw-away certificate authority and a server certificate for 127.0.0.1 and localhost,
# signed by it, for the simulated back-end. Nothing made here is ever committed.
#
#   make-certificates.sh [--force] OUTPUT_DIRECTORY
#
# Writes ca.pem, ca.key, server.pem and server.key. An existing complete set is kept unless
# --force is given, so that a build does not invalidate a CA that a running program trusts.
set -euo pipefail

force=0
if [ "${1:-}" = "--force" ]; then
  force=1
  shift
fi
if [ $# -ne 1 ]; then
  echo "usage: $0 [--force] OUTPUT_DIRECTORY" >&2
  exit 2
fi

out=$1
mkdir -p "$out"

if [ $force -eq 0 ] && [ -s "$out/ca.pem" ] && [ -s "$out/ca.key" ] \
    && [ -s "$out/server.pem" ] && [ -s "$out/server.key" ]; then
  exit 0
fi

work=$(mktemp -d "${TMPDIR:-/tmp}/kestravin-certs.XXXXXX")
trap 'rm -rf "$work"' EXIT
umask 077

# Elliptic-curve keys: quick to make, so tests can afford a fresh authority per run.
openssl ecparam -name prime256v1 -genkey -noout -out "$work/ca.key"
openssl req -x509 -new -key "$work/ca.key" -sha256 -days 3650 \
  -subj "/O=Kestravin development/CN=Kestravin simulated back-end CA" \
  -addext "basicConstraints=critical,CA:TRUE" \
  -addext "keyUsage=critical,keyCertSign,cRLSign" \
  -addext "subjectKeyIdentifier=hash" \
  -out "$work/ca.pem" 2>/dev/null

openssl ecparam -name prime256v1 -genkey -noout -out "$work/server.key"
openssl req -new -key "$work/server.key" -sha256 \
  -subj "/O=Kestravin development/CN=localhost" \
  -out "$work/server.csr" 2>/dev/null

cat > "$work/server.ext" <<'EOF'
basicConstraints=critical,CA:FALSE
keyUsage=critical,digitalSignature,keyEncipherment
extendedKeyUsage=serverAuth
subjectAltName=IP:127.0.0.1,DNS:localhost
authorityKeyIdentifier=keyid
EOF

openssl x509 -req -in "$work/server.csr" -CA "$work/ca.pem" -CAkey "$work/ca.key" \
  -CAcreateserial -days 825 -sha256 -extfile "$work/server.ext" \
  -out "$work/server.pem" 2>/dev/null

# Only the keys stay private; the certificates are meant to be read by whoever trusts them.
chmod 600 "$work/ca.key" "$work/server.key"
chmod 644 "$work/ca.pem" "$work/server.pem"
mv -f "$work/ca.key" "$work/ca.pem" "$work/server.key" "$work/server.pem" "$out/"
