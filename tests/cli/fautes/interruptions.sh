#!/usr/bin/env bash
# Un programme tué net (kill -9) à un instant tiré au hasard de sa vie ne laisse jamais un
# dossier cassé :
# - ajouter-personne : le dossier s'ouvre, chaque ajout dit (« Personne K ajoutée. » écrit
#   avant la mort) est là, entier, sous son numéro, et aucune personne listée n'est à moitié
#   écrite ;
# - renommer (aller et retour) : exactement un des deux noms existe, et il s'ouvre avec
#   toutes ses personnes ;
# - copier : la cible est absente, ou c'est un dossier complet qui s'ouvre.
# 30 tours de chaque en temps ordinaire, 200 avec RQ_FAUTES_COMPLET=1.
source "$(dirname "$0")/commun.sh"

tours=30
[ "$COMPLET" = 1 ] && tours=200

# attend_ms N : pause de N millisecondes.
attend_ms() { sleep "$(printf '%d.%03d' $(($1 / 1000)) $(($1 % 1000)))"; }

# tue_au_hasard DUREE ARGS... : lance rqbase en arrière-plan et le tue après un délai tiré
# entre 0 et 1,3 × DUREE ms (DUREE : la durée mesurée d'une exécution entière) : la plupart
# des morts tombent en cours de route, quelques exécutions vont au bout. Sa sortie standard
# reste dans $TRAVAIL/_tue.
tue_au_hasard() {
  local duree="$1"
  shift
  local delai=$((RANDOM % (duree * 13 / 10 + 1)))
  "$RQ" "$@" </dev/null >"$TRAVAIL/_tue" 2>/dev/null &
  local pid=$!
  attend_ms "$delai"
  kill -9 "$pid" 2>/dev/null
  wait "$pid" 2>/dev/null
}

# mesure ARGS... : lance une fois jusqu'au bout ; rend la durée en ms dans $duree.
mesure() {
  local debut
  debut=$(ms)
  doit 0 "$@"
  duree=$(($(ms) - debut))
}

doit 0 creer Famille --premiere-personne
mesure ajouter-personne Famille --nom Etalon --prenoms Mesure --sexe M
note "un ajout entier : $duree ms ; les morts tombent entre 0 et $((duree * 13 / 10)) ms"

# --- ajouter-personne -----------------------------------------------------------------------
# Les ajouts dits : numéro|nom|prénoms|sexe (la barre, parce que read fond les tabulations).
printf '1|X||?\n2|Etalon|Mesure|M\n' >"$TRAVAIL/acquittes"
dits=0
for ((r = 1; r <= tours; r++)); do
  tue_au_hasard "$duree" ajouter-personne Famille --nom "K$r" --prenoms "Tour $r" --sexe M
  if [[ "$(cat "$TRAVAIL/_tue")" =~ ^Personne\ ([0-9]+)\ ajoutée\.$ ]]; then
    printf '%s|K%s|Tour %s|M\n' "${BASH_REMATCH[1]}" "$r" "$r" >>"$TRAVAIL/acquittes"
    dits=$((dits + 1))
  fi
  lance info Famille
  if [ "$code" != 0 ]; then
    echoue "ajout tué au tour $r : le dossier ne s'ouvre plus ; $(erreur | head -2)"
    break
  fi
  lance personnes Famille
  # Chaque personne listée est entière : la première, l'étalon, ou l'ajout d'un tour (nom,
  # prénoms et sexe de ce tour), et les numéros se suivent depuis 1.
  if ! awk -F'\t' '
      $1 != NR { print "numéro " $1 " à la ligne " NR; exit 1 }
      $1 == 1 && $3 == "X" { next }
      $1 == 2 && $3 == "Etalon" && $4 == "Mesure" && $2 == "M" { next }
      $3 ~ /^K[0-9]+$/ && $4 == "Tour " substr($3, 2) && $2 == "M" { next }
      { print "personne abîmée : " $0; exit 1 }' "$TRAVAIL/_sortie" >"$TRAVAIL/ecart"; then
    echoue "ajout tué au tour $r : $(cat "$TRAVAIL/ecart")"
    break
  fi
  # Chaque ajout dit est là, sous son numéro.
  while IFS='|' read -r no nom prenoms sexe; do
    grep -qxF "$no	$sexe	$nom	$prenoms" "$TRAVAIL/_sortie" ||
      echoue "ajout tué au tour $r : la personne $no ($nom), acquittée, manque"
  done <"$TRAVAIL/acquittes"
  [ "$echecs" = 0 ] || break
done
note "ajouts tués : $tours tours, $dits dits avant la mort"

# Chacune des deux suites travaille sur un dossier à elle, de trois personnes, dont la liste
# sert de référence : un échec d'une suite n'entraîne pas les autres.
# nouveau NOM : crée le dossier et pose la liste de référence dans $TRAVAIL/reference.
nouveau() {
  doit 0 creer "$1" --premiere-personne
  doit 0 ajouter-personne "$1" --nom Lefèvre --prenoms "Jean Baptiste" --sexe M
  doit 0 ajouter-personne "$1" --nom Martin --prenoms Louise --sexe F
  lance personnes "$1"
  cp "$TRAVAIL/_sortie" "$TRAVAIL/reference"
}

# --- renommer, aller et retour --------------------------------------------------------------
nouveau Aller
mesure renommer Aller Retour
courant=Retour
autre=Aller
note "un renommage entier : $duree ms"
for ((r = 1; r <= tours; r++)); do
  tue_au_hasard "$duree" renommer "$courant" "$autre"
  present=""
  [ -e "$courant.rq2" ] && present="$courant"
  [ -e "$autre.rq2" ] && present="$present $autre"
  present="${present# }"
  if [ "$present" != Aller ] && [ "$present" != Retour ]; then
    echoue "renommage tué au tour $r ($courant -> $autre) : présents [$present]"
    ls -la "$courant.rq2" "$autre.rq2" >&2 2>/dev/null
    break
  fi
  lance personnes "$present"
  if [ "$code" != 0 ] || ! diff -q "$TRAVAIL/reference" "$TRAVAIL/_sortie" >/dev/null; then
    echoue "renommage tué au tour $r ($courant -> $autre) : $present ne s'ouvre plus entier (code $code) ; $(erreur | head -2)"
    ls -la "$present.rq2" >&2
    break
  fi
  [ "$present" = "$courant" ] || { autre="$courant"; courant="$present"; }
done

# --- copier ---------------------------------------------------------------------------------
nouveau Source
mesure copier Source Etalon
rm -rf Etalon.rq2
note "une copie entière : $duree ms"
completes=0
for ((r = 1; r <= tours; r++)); do
  tue_au_hasard "$duree" copier Source "C$r"
  if [ -e "C$r.rq2" ]; then
    lance personnes "C$r"
    if [ "$code" != 0 ] || ! diff -q "$TRAVAIL/reference" "$TRAVAIL/_sortie" >/dev/null; then
      echoue "copie tuée au tour $r : la cible existe mais ne s'ouvre pas entière (code $code) ; $(erreur | head -2)"
      ls -la "C$r.rq2" >&2
    fi
    completes=$((completes + 1))
    rm -rf "C$r.rq2"
  fi
done
restes=$(find . -maxdepth 1 -name '.rq*c' | wc -l)
note "copies tuées : $completes cibles complètes, $restes copie(s) inachevée(s) laissée(s) à l'écart (cachées)"
lance personnes Source
diff -q "$TRAVAIL/reference" "$TRAVAIL/_sortie" >/dev/null || echoue "la source des copies a changé"

conclut
