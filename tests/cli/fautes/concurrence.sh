#!/usr/bin/env bash
# Quatre boucles d'ajouts en parallèle sur un même dossier. Chaque commande dit
# « Personne K ajoutée. » ou sort avec le code 1 et le message du verrou ; les numéros dits
# sont tous différents ; à la fin le dossier liste exactement les personnes dont l'ajout a été
# dit (plus la première), sans fantôme, et s'ouvre.
source "$(dirname "$0")/commun.sh"

boucles=4
tours=25
[ "$COMPLET" = 1 ] && tours=50

doit 0 creer Famille --premiere-personne

# Deux boucles attendent le verrou le temps ordinaire ; deux n'attendent que 30 ms, pour que
# le refus du verrou arrive aussi.
boucle() {
  local b="$1" attente="$2" i code_
  for ((i = 1; i <= tours; i++)); do
    RQBASE_ATTENTE_VERROU="$attente" timeout -k 5 60 "$RQ" ajouter-personne Famille \
      --nom "B${b}_$i" --prenoms "Tour $i" --sexe F </dev/null >"$TRAVAIL/b$b.$i.sortie" 2>"$TRAVAIL/b$b.$i.erreur"
    code_=$?
    echo "$code_" >"$TRAVAIL/b$b.$i.code"
  done
}
debut=$(ms)
for ((b = 1; b <= boucles; b++)); do
  if [ "$b" -le 2 ]; then boucle "$b" 10000 & else boucle "$b" 30 & fi
done
wait
duree=$(($(ms) - debut))

acquittes=0
refuses=0
: >"$TRAVAIL/attendus"
for ((b = 1; b <= boucles; b++)); do
  for ((i = 1; i <= tours; i++)); do
    c="$(cat "$TRAVAIL/b$b.$i.code")"
    s="$(cat "$TRAVAIL/b$b.$i.sortie")"
    if [ "$c" = 0 ] && [[ "$s" =~ ^Personne\ ([0-9]+)\ ajoutée\.$ ]]; then
      acquittes=$((acquittes + 1))
      printf '%s\t%s\n' "${BASH_REMATCH[1]}" "B${b}_$i" >>"$TRAVAIL/attendus"
    elif [ "$c" = 1 ] && grep -q "est déjà ouvert en écriture par un autre programme" "$TRAVAIL/b$b.$i.erreur" &&
      [ ! -s "$TRAVAIL/b$b.$i.sortie" ]; then
      refuses=$((refuses + 1))
    else
      echoue "boucle $b, tour $i : code $c, sortie [$s], erreur [$(head -2 "$TRAVAIL/b$b.$i.erreur")]"
    fi
  done
done
note "$((boucles * tours)) ajouts en $duree ms : $acquittes acquittés, $refuses refusés par le verrou"

doublons="$(cut -f1 "$TRAVAIL/attendus" | sort | uniq -d)"
[ -z "$doublons" ] || echoue "numéros donnés deux fois : $doublons"

doit 0 info Famille
lance --json info Famille
grep -q "\"numeros\": $((acquittes + 1))," "$TRAVAIL/_sortie" ||
  echoue "$acquittes ajouts acquittés mais info dit : $(grep numeros "$TRAVAIL/_sortie")"
# La liste : la première personne (« X ») puis exactement les ajouts acquittés, chacun sous
# le numéro qui lui a été dit, entier (nom, prénoms, sexe).
{
  printf '1\t?\tX\t\n'
  sort -n "$TRAVAIL/attendus" | while IFS=$'\t' read -r no nom; do
    printf '%s\tF\t%s\tTour %s\n' "$no" "$nom" "${nom#*_}"
  done
} >"$TRAVAIL/liste_attendue"
lance personnes Famille
if ! diff "$TRAVAIL/liste_attendue" "$TRAVAIL/_sortie" >"$TRAVAIL/ecart"; then
  echoue "la liste des personnes n'est pas celle des ajouts acquittés :"
  head -20 "$TRAVAIL/ecart" >&2
fi
fantomes="$(awk -F'\t' '$1 > 1 && $3 == ""' "$TRAVAIL/_sortie" | wc -l)"
[ "$fantomes" = 0 ] || echoue "$fantomes personne(s) sans nom au-delà de la première"

conclut
