#!/usr/bin/env bash
# Vérifie que chaque dossier de src/rqbase n'inclut que lui-même et les dossiers placés
# avant lui dans l'ordre des couches donné en arguments (le plus bas d'abord).
# Usage : verifie_couches.sh RACINE couche1 couche2 ...
set -euo pipefail
racine="$1"; shift
declare -A rang
i=0
for c in "$@"; do rang[$c]=$i; i=$((i + 1)); done

fautes=0
for c in "$@"; do
  dossier="$racine/src/rqbase/$c"
  [ -d "$dossier" ] || continue
  while IFS= read -r ligne; do
    fichier="${ligne%%:*}"
    cible="$(sed -E 's|.*#include "rqbase/([a-z_]+)/.*|\1|' <<<"$ligne")"
    if [ -z "${rang[$cible]+x}" ]; then
      echo "$fichier : inclut le dossier inconnu « $cible »" >&2; fautes=$((fautes + 1))
    elif [ "${rang[$cible]}" -gt "${rang[$c]}" ]; then
      echo "$fichier : la couche « $c » inclut « $cible », placée au-dessus d'elle" >&2; fautes=$((fautes + 1))
    fi
  done < <(grep -rHE '^\s*#\s*include\s+"rqbase/' "$dossier" || true)
done
[ "$fautes" -eq 0 ] || { echo "$fautes inclusion(s) à contresens" >&2; exit 1; }
