#!/usr/bin/env bash
# Installe les paquets Debian dont le projet a besoin, et seulement ceux qui manquent.
# Sans effet quand tout est là ; sudo seulement quand on n'est pas root.
set -euo pipefail

paquets=(
  cmake g++ make pkg-config
  libntl-dev libgmp-dev
  libboost-regex-dev libboost-dev
  libsqlite3-dev libsqlitecpp-dev sqlite3
  libpugixml-dev
  libcurl4-openssl-dev
  libssl-dev
  libcli11-dev nlohmann-json3-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  clang libclang-rt-14-dev
)

manquants=()
for p in "${paquets[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || manquants+=("$p")
done
[ ${#manquants[@]} -eq 0 ] && exit 0

echo "Installation des paquets manquants : ${manquants[*]}" >&2
sudo_=""
[ "$(id -u)" -ne 0 ] && sudo_="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo_ apt-get update -qq >&2
$sudo_ apt-get install -y -qq --no-install-recommends "${manquants[@]}" >&2
