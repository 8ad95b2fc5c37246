#!/usr/bin/env bash
# Disque plein, à travers le binaire. Un petit système de fichiers demanderait des montages
# réservés au super-utilisateur ; la limite de taille de fichier du processus (ulimit -f,
# SIGXFSZ ignoré) donne le même effet sans droits : une écriture qui franchit la limite
# revient courte, la suivante échoue (EFBIG), comme sur un disque qui se remplit.
# - ajouter-personne : code 1 et le message d'écriture ratée, le compte ne couvre pas la
#   fiche coupée, le dossier s'ouvre avec les mêmes personnes, et l'ajout suivant (sans
#   limite) prend le numéro libre et réécrit la fiche coupée ;
# - copier, creer : code 1, et rien n'est laissé.
source "$(dirname "$0")/commun.sh"

# sous_limite KIO ARGS... : rqbase avec des fichiers bornés à KIO kibioctets.
sous_limite() {
  local kio="$1"
  shift
  (
    ulimit -f "$kio" || exit 99
    trap '' XFSZ
    exec timeout -k 5 20 "$RQ" "$@"
  ) </dev/null >"$TRAVAIL/_sortie" 2>"$TRAVAIL/_erreur"
  code=$?
}

# La limite agit-elle ici ? Sinon ce cas n'est pas vérifié par le binaire : on le dit, et
# le test échoue (le disque plein reste couvert par le test de la bibliothèque tests/dossier,
# par la couture de pannes du fichier).
(
  ulimit -f 1 && trap '' XFSZ && head -c 4096 /dev/zero >"$TRAVAIL/_sonde"
) 2>/dev/null
if [ "$(stat -c %s "$TRAVAIL/_sonde" 2>/dev/null)" != 1024 ]; then
  echoue "la limite de taille de fichier (ulimit -f) n'agit pas ici : le disque plein n'a pas été vérifié à travers le binaire (seul le test de la bibliothèque tests/dossier le couvre)"
  conclut
fi

doit 0 creer Famille --premiere-personne
doit 0 ajouter-personne Famille --nom Lefèvre --prenoms "Jean Baptiste" --sexe M
# Une limite qui coupe la prochaine fiche de 644 octets en son milieu : taille < limite < taille + 644.
while :; do
  taille=$(stat -c %s Famille.rq2/Famille.prs)
  kio=$(((taille + 1023) / 1024))
  [ $((kio * 1024)) -gt "$taille" ] && [ $((kio * 1024)) -lt $((taille + 644)) ] && break
  doit 0 ajouter-personne Famille --nom Martin --prenoms Louise --sexe F || conclut
done
lance personnes Famille
cp "$TRAVAIL/_sortie" "$TRAVAIL/avant"
numeros=$(wc -l <"$TRAVAIL/avant")

note "ajout sur un disque plein (fichiers bornés à $kio Kio, le .prs en fait $taille octets)"
sous_limite "$kio" ajouter-personne Famille --nom Plein --prenoms Coupé --sexe M
[ "$code" = 1 ] || echoue "ajout sur disque plein : code $code au lieu de 1"
# Le premier à buter sur le disque plein le dit : le fichier des personnes, ou la base, que
# l'index des noms écrit avant la fiche.
grep -qF -e "L'écriture dans le dossier a échoué (disque plein, erreur du disque, ou fichier du dossier qui n'a pas pu s'ouvrir) : la personne n'a pas été ajoutée." \
  -e "Une erreur s'est produite sur la base Famille.adb" \
  "$TRAVAIL/_erreur" || echoue "ajout sur disque plein : message [$(head -2 "$TRAVAIL/_erreur")]"
[ ! -s "$TRAVAIL/_sortie" ] || echoue "ajout sur disque plein : un échec ne dit pas « ajoutée » : $(sortie)"
apres=$(stat -c %s Famille.rq2/Famille.prs)
note "le .prs fait $apres octets après l'écriture coupée"
doit 0 info Famille
lance personnes Famille
diff -q "$TRAVAIL/avant" "$TRAVAIL/_sortie" >/dev/null ||
  echoue "après l'écriture coupée, les personnes ne sont plus les mêmes : $(diff "$TRAVAIL/avant" "$TRAVAIL/_sortie")"
doit 0 ajouter-personne Famille --nom Apres --prenoms Place --sexe F
[ "$(sortie)" = "Personne $((numeros + 1)) ajoutée." ] || echoue "l'ajout suivant dit [$(sortie)] au lieu du numéro $((numeros + 1))"
lance personnes Famille
[ "$(tail -1 "$TRAVAIL/_sortie")" = "$((numeros + 1))	F	Apres	Place" ] ||
  echoue "la fiche coupée n'a pas été réécrite : $(tail -1 "$TRAVAIL/_sortie")"

note "copie sur un disque plein"
sous_limite 64 copier Famille Copie
[ "$code" = 1 ] || echoue "copie sur disque plein : code $code au lieu de 1"
grep -qF "a échoué" "$TRAVAIL/_erreur" || echoue "copie sur disque plein : message [$(head -2 "$TRAVAIL/_erreur")]"
[ ! -e Copie.rq2 ] || echoue "copie sur disque plein : la cible est restée"
[ -z "$(find . -maxdepth 1 -name '.rq*c')" ] || echoue "copie sur disque plein : la copie inachevée est restée"

note "création sur un disque plein"
sous_limite 1 creer Neuf --premiere-personne
[ "$code" = 1 ] || echoue "création sur disque plein : code $code au lieu de 1"
[ ! -e Neuf.rq2 ] || echoue "création sur disque plein : un dossier incomplet est resté"
lance personnes Famille
[ "$code" = 0 ] || echoue "le dossier voisin ne s'ouvre plus"

conclut
