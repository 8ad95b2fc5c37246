# Ce que partagent les scripts de fautes : lus par `source`, avec en arguments le binaire
# rqbase et le dossier de travail du script (vidé au départ, sous le dossier de construction).
#
# Un script compte ses échecs (echoue) et finit par `conclut`, qui rend 1 s'il y en a eu :
# un contrôle raté ne cache pas les suivants. RQ_FAUTES_COMPLET=1 demande les grandes
# tailles (plus de tours) ; sans lui, chaque script reste court pour la suite ordinaire.
set -uo pipefail

if [ $# -lt 2 ]; then
  echo "usage : $0 <binaire rqbase> <dossier de travail>" >&2
  exit 2
fi
RQ="$(cd "$(dirname "$1")" && pwd)/$(basename "$1")"
TRAVAIL="$2"
if [ ! -x "$RQ" ]; then
  echo "binaire introuvable : $RQ" >&2
  exit 2
fi
rm -rf "$TRAVAIL"
mkdir -p "$TRAVAIL/_env" "$TRAVAIL/d"
TRAVAIL="$(cd "$TRAVAIL" && pwd)"
cd "$TRAVAIL/d"
# Le journal et les préférences restent hors des dossiers observés.
export XDG_DATA_HOME="$TRAVAIL/_env/donnees" XDG_CONFIG_HOME="$TRAVAIL/_env/config"
export RQBASE_PREFERENCES="$TRAVAIL/_env/preferences.ini"
COMPLET="${RQ_FAUTES_COMPLET:-0}"
echecs=0

echoue() {
  echo "ÉCHEC : $*" >&2
  echecs=$((echecs + 1))
}

note() { echo "-- $*"; }

conclut() {
  if [ "$echecs" -ne 0 ]; then
    echo "$echecs contrôle(s) en échec" >&2
    exit 1
  fi
  echo "tout est conforme"
  exit 0
}

# lance ARGS... : rqbase sans terminal (stdin /dev/null), borné à 20 s. Pose $code, et les
# fichiers $TRAVAIL/_sortie et $TRAVAIL/_erreur. Le code 124 dit une commande arrêtée
# par la borne : un blocage.
lance() {
  timeout -k 5 20 "$RQ" "$@" </dev/null >"$TRAVAIL/_sortie" 2>"$TRAVAIL/_erreur"
  code=$?
}
sortie() { cat "$TRAVAIL/_sortie"; }
erreur() { cat "$TRAVAIL/_erreur"; }

# L'empreinte d'une arborescence : type, droits, taille, nom et cible de chaque entrée, puis
# le sha256 de chaque fichier ordinaire. Deux empreintes égales : pas un octet n'a changé.
empreinte() {
  (
    cd "$1" || exit 1
    find . -printf '%y %m %s %P -> %l\n' | LC_ALL=C sort
    find . -type f -print0 | LC_ALL=C sort -z | xargs -0 -r sha256sum
  )
}

# doit CODE ARGS... : la commande doit sortir avec CODE.
doit() {
  local attendu="$1"
  shift
  lance "$@"
  if [ "$code" != "$attendu" ]; then
    echoue "rqbase $* : code $code au lieu de $attendu ; $(erreur | head -3)"
    return 1
  fi
}

# Les noms (deuxième colonne de `personnes`, sans le numéro) d'un dossier, un par ligne.
noms_listes() {
  lance personnes "$1"
  [ "$code" = 0 ] || { echoue "personnes $1 : code $code ; $(erreur | head -2)"; return 1; }
  sortie
}

# millisecondes depuis l'époque
ms() { date +%s%3N; }
