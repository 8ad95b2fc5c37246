#!/usr/bin/env bash
# Une commande refusée ne change pas un octet : l'empreinte de tout le dossier de travail
# (liste des fichiers, droits, sha256 de chacun) est la même avant et après chaque refus, et
# le refus sort avec le code 1 (donnée refusée) ou 2 (ligne de commande) et son message.
source "$(dirname "$0")/commun.sh"

doit 0 creer Famille --titre "Famille Lefèvre" --premiere-personne
doit 0 ajouter-personne Famille --nom Lefèvre --prenoms "Jean Baptiste" --sexe M
doit 0 copier Famille Copie
doit 0 copier Famille Seconde
# Ce que l'utilisateur a posé à côté : un dossier qui n'est pas une généalogie, un .prs nu.
mkdir autre
echo "export de mes fiches" >autre/export.prs
echo "à garder" >autre/notes.txt
echo "un fichier nu" >X.prs

# refuse CODE MOTIF ARGS... : le refus attendu, et rien de changé sur le disque.
refuse() {
  local attendu="$1" motif="$2"
  shift 2
  local avant apres
  avant="$(empreinte .)"
  lance "$@"
  apres="$(empreinte .)"
  if [ "$code" != "$attendu" ]; then
    echoue "rqbase $* : code $code au lieu de $attendu ; $(erreur | head -3)"
  elif ! erreur | grep -qF -- "$motif"; then
    echoue "rqbase $* : message sans « $motif » : $(erreur | head -3)"
  elif [ -s "$TRAVAIL/_sortie" ]; then
    echoue "rqbase $* : un refus n'écrit rien sur la sortie standard : $(sortie | head -3)"
  fi
  if [ "$avant" != "$apres" ]; then
    echoue "rqbase $* : le refus a changé le disque :"
    diff <(echo "$avant") <(echo "$apres") >&2
  fi
}

note "données refusées"
refuse 1 "Le sexe doit être M, F ou ?." ajouter-personne Famille --nom Martin --sexe H
refuse 1 "Le nom contient un caractère de contrôle (U+0009)" ajouter-personne Famille --nom $'Martin\tDurand'
refuse 1 "Le caractère U+1F600 (dans le nom)" ajouter-personne Famille --nom "Martin 😀"
refuse 1 "(U+000A)" ajouter-personne Famille --nom Martin --prenoms $'Jean\nPaul'
refuse 1 "(U+001B)" --json ajouter-personne Famille --nom $'Martin\e[31m'
refuse 1 "Le nom dépasse 100 caractères" ajouter-personne Famille --nom "$(printf 'M%.0s' {1..101})"
refuse 1 "Le titre contient un caractère de contrôle" creer Neuf --titre $'a\tb'
refuse 1 "existe déjà" --non creer Famille
refuse 1 "existe déjà" creer Famille.rq2 --premiere-personne

note "liens et faits refusés"
doit 0 ajouter-personne Famille --nom Garnier --prenoms Marie --sexe F
doit 0 ajouter-personne Famille --nom Lefèvre --prenoms Paul --sexe M
doit 0 lier Famille --pere 2 --mere 3 --enfant 4
refuse 1 "Une personne ne peut pas être son propre parent." lier Famille --pere 2 --enfant 2
refuse 1 "ce lien ferait une boucle dans l'arbre" lier Famille --pere 4 --enfant 2
refuse 1 "La personne 99 n'existe pas dans ce dossier." lier Famille --pere 99 --enfant 4
refuse 1 "a déjà un père (2)" lier Famille --pere 1 --enfant 4
refuse 1 "est de sexe F" lier Famille --pere 3 --enfant 1
refuse 1 "sont les parents de 4" delier Famille --conjoint 2 3
refuse 1 "Donnez soit --pere" lier Famille
refuse 2 "nombre d'arguments incorrect" lier Famille --conjoint 2 3 4
refuse 1 "n'est pas dans le catalogue" evenement ajouter Famille 4 NAISSANCEX
refuse 1 "n'est pas un événement dans ce dossier" evenement ajouter Famille 4 TITRE
refuse 1 "n'est pas un champ simple dans ce dossier" champ ajouter Famille 4 NAISSANCE valeur
refuse 1 "Date refusée" evenement ajouter Famille 4 NAISSANCE --date "32/13/1850"
refuse 1 "n'est pas un conjoint de 4" evenement ajouter Famille 4 UNION --conjoint 3
refuse 1 "n'a pas d'événement au rang 1" evenement supprimer Famille 4 1
refuse 1 "n'est pas supprimée" restaurer-personne Famille 4
refuse 1 "La valeur dépasse 100 caractères" champ ajouter Famille 4 TITRE "$(printf 'x%.0s' {1..101})"

note "copie, renommage et suppression refusés"
refuse 1 "Copie.rq2\" existe déjà : rien n'a changé." renommer Famille Copie
refuse 1 "Nouveau nom invalide" renommer Famille ../Famille
refuse 1 "(U+0009)" renommer Famille $'Fam\tille'
refuse 1 "Le dossier \"Copie.rq2\" existe déjà." copier Famille Copie
refuse 1 "Le dossier \"Copie.rq2\" existe déjà." copier Famille Copie.rq2
refuse 1 "n'est pas un dossier généalogique" --oui supprimer autre/export.prs
refuse 1 "n'est pas un dossier généalogique" --oui supprimer autre
refuse 1 "n'est pas un dossier généalogique" --oui supprimer X.prs
refuse 1 "Suppression abandonnée" supprimer Famille
# Une copie jamais ouverte n'a pas encore son identifiant : un refus ne doit pas le lui donner.
refuse 1 "Suppression abandonnée" --non supprimer Copie
refuse 1 "Famille.rq2\" existe déjà : rien n'a changé." renommer Seconde Famille

note "lignes de commande incorrectes"
refuse 2 "argument ou option obligatoire manquant : DOSSIER" ajouter-personne --nom Martin
refuse 2 "valeur invalide" personne Famille deux
refuse 2 "argument inattendu" ajouter-personne Famille --nom Martin --surnom Jeannot

note "dossier tenu par un autre écrivain"
# flock(1) prend le même verrou que le programme (flock sur le fichier des personnes).
if command -v flock >/dev/null; then
  # Le sous-shell prend le verrou puis devient `sleep` : tuer ce processus rend le verrou.
  (flock -x 9 && exec sleep 30) 9<Famille.rq2/Famille.prs &
  tenant=$!
  sleep 0.3
  RQBASE_ATTENTE_VERROU=200 refuse 1 "est déjà ouvert en écriture par un autre programme" \
    ajouter-personne Famille --nom Martin
  RQBASE_ATTENTE_VERROU=200 refuse 1 "est déjà ouvert en écriture par un autre programme" \
    renommer Famille Autre
  # Le verrou exclusif de l'écrivain arrête aussi les lecteurs, qui attendent puis renoncent.
  RQBASE_ATTENTE_VERROU=200 refuse 1 "est déjà ouvert en écriture par un autre programme" info Famille
  kill "$tenant"
  wait "$tenant" 2>/dev/null
else
  echoue "flock(1) absent : le refus d'un second écrivain n'a pas été vérifié"
fi

note "dossier en lecture seule"
# Le programme lit les bits de droits, si bien que le super-utilisateur, que les droits
# n'arrêtent pas, voit aussi le dossier en lecture seule : ces cas passent toujours.
chmod a-w Famille.rq2/Famille.prs
refuse 1 "est en lecture seule : rien n'a été changé." ajouter-personne Famille --nom Martin
refuse 1 "est en lecture seule" renommer Famille Autre
refuse 1 "est en lecture seule" --oui supprimer Famille
chmod u+w Famille.rq2/Famille.prs
chmod a-w Famille.rq2
refuse 1 "est en lecture seule : rien n'a été changé." ajouter-personne Famille --nom Martin
refuse 1 "est en lecture seule" --oui supprimer Famille
if [ "$(id -u)" = 0 ]; then
  note "super-utilisateur : le dossier sans droit d'écriture a été vérifié par les bits de droits"
fi
chmod u+w Famille.rq2

note "les lectures ne changent rien"
refuse_pas() {
  local avant apres
  avant="$(empreinte .)"
  doit 0 "$@"
  apres="$(empreinte .)"
  [ "$avant" = "$apres" ] || echoue "rqbase $* : une lecture a changé le disque"
}
refuse_pas info Famille
refuse_pas --json personnes Famille
refuse_pas personne Famille 2
refuse_pas catalogue Famille --champ NAISSANCE
refuse_pas info Copie

note "ce que l'utilisateur a posé est intact"
[ "$(cat autre/export.prs)" = "export de mes fiches" ] || echoue "autre/export.prs a changé"
[ "$(cat autre/notes.txt)" = "à garder" ] || echoue "autre/notes.txt a changé"
[ "$(cat X.prs)" = "un fichier nu" ] || echoue "X.prs a changé"
lance personnes Famille
[ "$(sortie)" = $'1\t?\tX\t\n2\tM\tLefèvre\tJean Baptiste\n3\tF\tGarnier\tMarie\n4\tM\tLefèvre\tPaul' ] || echoue "les personnes de Famille ont changé : $(sortie)"

conclut
