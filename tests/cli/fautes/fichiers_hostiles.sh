#!/usr/bin/env bash
# Fichiers hostiles dans un dossier : un lien symbolique vers un fichier du dehors, des tubes
# nommés (FIFO) à la place de fichiers du dossier, un compte d'en-tête absurde. Aucune commande
# ne suit un lien, ne bloque sur un tube ni ne croit un compte que la taille du fichier dément.
source "$(dirname "$0")/commun.sh"

# Toutes les commandes d'un dossier, chacune bornée à 20 s : aucune ne doit bloquer. Le code
# de chacune est dit ; seul un blocage ou un plantage (signal) est un échec ici.
sans_blocage() {
  local dossier="$1" quoi="$2"
  local -a commandes=(
    "info $dossier" "--json personnes $dossier" "personne $dossier 1" "catalogue $dossier"
    "ajouter-personne $dossier --nom Martin --prenoms Louise --sexe F" "copier $dossier Copie_$dossier"
    "renommer $dossier Renomme_$dossier" "renommer Renomme_$dossier $dossier")
  local c
  for c in "${commandes[@]}"; do
    # shellcheck disable=SC2086
    lance $c
    if [ "$code" = 124 ] || [ "$code" = 137 ]; then
      echoue "$quoi : rqbase $c bloque (arrêté au bout de 20 s)"
    elif [ "$code" -gt 2 ]; then
      echoue "$quoi : rqbase $c finit par le code $code ; $(erreur | head -3)"
    else
      note "$quoi : rqbase $c -> $code $(erreur | head -1)"
    fi
  done
}

note "lien symbolique à la place du .xin, vers un fichier du dehors"
doit 0 creer Lien --premiere-personne
mkdir -p ../dehors
printf '<?xml version="1.0"?>\n<Secret>ne pas toucher</Secret>\n' >../dehors/secret.xml
empreinte_dehors="$(empreinte ../dehors)"
rm Lien.rq2/Lien.xin
ln -s "$TRAVAIL/dehors/secret.xml" Lien.rq2/Lien.xin
# Sans le marqueur, l'ouverture en écriture voudrait écrire un identifiant neuf dans le .xin.
rm -f Lien.rq2/lienidpers.cpt
for c in "info Lien" "personne Lien 1" "ajouter-personne Lien --nom Martin" "--json personnes Lien"; do
  # shellcheck disable=SC2086
  lance $c
  note "xin en lien : rqbase $c -> $code $(erreur | head -1)"
  [ "$code" -le 2 ] || echoue "xin en lien : rqbase $c finit par le code $code"
  [ "$(empreinte ../dehors)" = "$empreinte_dehors" ] || echoue "xin en lien : rqbase $c a écrit hors du dossier"
done
[ -L Lien.rq2/Lien.xin ] || note "xin en lien : le lien a été remplacé par un fichier du dossier"

note "lien symbolique à la place du .prs"
doit 0 creer Prs --premiere-personne
cp Prs.rq2/Prs.prs ../dehors/personnes.prs
empreinte_dehors="$(empreinte ../dehors)"
rm Prs.rq2/Prs.prs
ln -s "$TRAVAIL/dehors/personnes.prs" Prs.rq2/Prs.prs
lance ajouter-personne Prs --nom Martin
[ "$code" = 1 ] || echoue "prs en lien : ajouter-personne devait être refusé (code $code)"
lance info Prs
[ "$code" = 1 ] || echoue "prs en lien : info devait être refusé (code $code)"
lance --oui supprimer Prs
[ "$code" = 1 ] || echoue "prs en lien : supprimer devait être refusé (code $code)"
[ "$(empreinte ../dehors)" = "$empreinte_dehors" ] || echoue "prs en lien : un fichier du dehors a changé"
[ -L Prs.rq2/Prs.prs ] || echoue "prs en lien : le lien de l'utilisateur a disparu"

note "tube nommé à la place du .psu"
doit 0 creer Tube --premiere-personne
rm Tube.rq2/Tube.psu
mkfifo Tube.rq2/Tube.psu
sans_blocage Tube "psu en tube"
[ -p Tube.rq2/Tube.psu ] || note "psu en tube : le tube n'est plus là"

note "tube nommé à la place du .prs, du .xin et du .dch"
for ext in prs xin dch; do
  nom="Tube_$ext"
  doit 0 creer "$nom" --premiere-personne
  rm "$nom.rq2/$nom.$ext"
  mkfifo "$nom.rq2/$nom.$ext"
  sans_blocage "$nom" "$ext en tube"
done

note "nom abîmé sur le disque : caractères de contrôle, guillemet, barre oblique inverse"
# Un nom écrit par un autre programme peut tenir ce que la commande refuse à la saisie : la
# liste JSON doit l'échapper, et rester un document valide.
doit 0 creer Abime --premiere-personne
doit 0 ajouter-personne Abime --nom Zzzzzzzzzz --prenoms Yyyyyyyy --sexe M
decalage=$(grep -abo Zzzzzzzzzz Abime.rq2/Abime.prs | cut -d: -f1)
printf 'A\x01B"C\\D\x1fE\tF\x7fG\x08\x0c\r\n' | dd of=Abime.rq2/Abime.prs bs=1 seek="$decalage" conv=notrunc 2>/dev/null
doit 0 --json personnes Abime --debut 2
attendu=$'  {"nom":"A\\u0001B\\"C\\\\D\\u001fE\\tF\x7fG\\b\\f\\r\\n","numero":2,"prenoms":"Yyyyyyyy","sexe":"M","supprime":false}'
[ "$(sed -n 2p "$TRAVAIL/_sortie")" = "$attendu" ] || echoue "nom abîmé : $(sed -n 2p "$TRAVAIL/_sortie" | od -c | head -5)"

note ".psu vide ou absent"
# Un en-tête court se refait d'après la taille du fichier : un .psu vide est un .psu sans
# entrée, et le dossier s'ouvre. Sans .psu, l'ajout réussit ou ne change rien.
doit 0 creer Vide --premiere-personne
: >Vide.rq2/Vide.psu
doit 0 info Vide
doit 0 creer Absent --premiere-personne
rm Absent.rq2/Absent.psu
doit 0 info Absent
avant="$(empreinte Absent.rq2)"
lance ajouter-personne Absent --nom Martin
if [ "$code" = 0 ]; then
  doit 0 info Absent
elif [ "$(empreinte Absent.rq2)" != "$avant" ]; then
  echoue "psu absent : ajouter-personne refusé (code $code) a pourtant changé le dossier : $(ls Absent.rq2 | tr '\n' ' ')"
fi

note ".psu dont l'en-tête annonce 2 000 000 000 de personnes supprimées"
doit 0 creer Compte --premiere-personne
doit 0 ajouter-personne Compte --nom Martin
# 2 000 000 000 = 0x77359400, en petit-boutiste sur les 4 octets de l'en-tête.
printf '\x00\x94\x35\x77' >Compte.rq2/Compte.psu
debut=$(ms)
lance --json info Compte
duree=$(($(ms) - debut))
note "info sur le compte absurde : $duree ms, code $code"
if [ "$code" != 0 ]; then
  echoue "compte absurde : info finit par le code $code ; $(erreur | head -2)"
else
  [ "$duree" -lt 1000 ] || echoue "compte absurde : info a pris $duree ms (plus d'une seconde)"
  # Le compte est borné par la taille du fichier : aucune entrée ne tient dans l'en-tête seul.
  grep -q '"personnes": 2,' "$TRAVAIL/_sortie" || echoue "compte absurde : $(tr -d '\n' <"$TRAVAIL/_sortie")"
  grep -q '"personnes_supprimees": 0,' "$TRAVAIL/_sortie" || echoue "compte absurde : supprimées $(grep supprimees "$TRAVAIL/_sortie")"
fi
debut=$(ms)
lance personnes Compte
duree=$(($(ms) - debut))
[ "$code" = 0 ] && [ "$duree" -lt 1000 ] || echoue "compte absurde : personnes code $code en $duree ms"

conclut
