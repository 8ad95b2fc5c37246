#!/usr/bin/env bash
# Démonstration : crée un petit dossier d'exemple dans un dossier temporaire et le
# montre avec les commandes de rqbase. Utilisation : scripts/demo.sh CHEMIN_DE_rqbase
set -euo pipefail
rqbase="$(cd "$(dirname "$1")" && pwd)/$(basename "$1")"
travail="$(mktemp -d)"
trap 'rm -rf "$travail"' EXIT
cd "$travail"

etape() { printf '\n== %s\n$ rqbase %s\n' "$1" "${*:2}"; "$rqbase" "${@:2}"; }

etape "Création d'un dossier avec une première personne" creer Famille --titre "Famille Lefèvre" --premiere-personne
etape "Ajout de personnes" ajouter-personne Famille --nom Lefèvre --prenoms "Jean Baptiste" --sexe M
"$rqbase" ajouter-personne Famille --nom Garnier --prenoms "Marie Louise" --sexe F
"$rqbase" ajouter-personne Famille.rq2 --nom Lefèvre --prenoms "Élise" --sexe F
etape "Description du dossier" info Famille
etape "Liste des personnes" personnes Famille
etape "Une fiche" personne Famille 2
etape "La même en JSON" --json personne Famille.rq2/Famille.prs 4
etape "Copie du dossier" copier Famille Sauvegarde
etape "Renommage de la copie" renommer Sauvegarde Archive
etape "Liste paginée de la copie (JSON)" --json personnes Archive --debut 2 --nombre 2
printf '\n== Créer par-dessus un dossier existant ne change rien (réponse Non)\n'
"$rqbase" --non creer Famille || echo "(code de sortie $?)"
etape "Suppression de la copie" --oui supprimer Archive
ls

etape "Un lieu partagé : le même texte garde son numéro" lieu ajouter Famille --commune Amiens --code 80 --region Picardie --pays France
"$rqbase" lieu ajouter Famille --commune "Saint-Étienne" --code 42 --pays France
"$rqbase" lieu ajouter Famille --commune Amiens --code 80 --region Picardie --pays France
"$rqbase" qualite ajouter Famille --valeur Témoin >/dev/null
etape "Les lieux dans l'ordre du fichier trié" --json lieu liste Famille
printf '\n== Un texte que le dossier ne peut pas tenir est refusé, rien ne change\n'
"$rqbase" ajouter-personne Famille --nom "Lefèvre 🌳" || echo "(code de sortie $?)"

etape "Le catalogue des champs du dossier" catalogue Famille
etape "Un champ en entier" catalogue Famille --champ NAISSANCE
etape "Une date tapée comme un utilisateur" date analyser "3 mars 1802"
etape "Une date républicaine vers le grégorien" date convertir "12 Ventôse 10" --calendrier R --vers G
etape "Tout ce qu'on sait d'une date" --json date info "14/07/1789"
etape "Écart entre deux dates" date ecart "14/07/1789" "21/01/1793"
etape "Pâques 1802" date paques 1802

printf '\n== Trois générations, liées par les commandes de la famille\n'
"$rqbase" ajouter-personne Famille --nom Lefèvre --prenoms Pierre --sexe M >/dev/null       # 5
"$rqbase" ajouter-personne Famille --nom Roux --prenoms Anne --sexe F >/dev/null           # 6
"$rqbase" ajouter-personne Famille --nom Lefèvre --prenoms "Henri Auguste" --sexe M >/dev/null  # 7
etape "Les grands-parents, unis" lier Famille --conjoint 5 6 --union
etape "Jean Baptiste, leur fils" lier Famille --pere 5 --mere 6 --enfant 2
"$rqbase" lier Famille --conjoint 2 3 >/dev/null
"$rqbase" lier Famille --pere 2 --mere 3 --enfant 4 >/dev/null
etape "Les enfants de Jean Baptiste et Marie Louise" lier Famille --pere 2 --mere 3 --enfant 7
"$rqbase" evenement ajouter Famille 5 NAISSANCE --date "2 février 1790" --lieu Amiens --code 80 --region Picardie --pays France >/dev/null
"$rqbase" evenement ajouter Famille 2 NAISSANCE --date "14 juin 1821" --lieu Amiens --code 80 --region Picardie --pays France >/dev/null
"$rqbase" evenement ajouter Famille 2 UNION --date "8 mai 1845" --conjoint 3 --lieu "Saint-Étienne" --code 42 --pays France >/dev/null
"$rqbase" evenement ajouter Famille 4 NAISSANCE --date "3 mars 1850" >/dev/null
etape "La naissance d'Henri, à sa place" --json evenement ajouter Famille 7 NAISSANCE --date "1848"
etape "Les professions de Jean Baptiste" professions Famille 2 "tisserand,aubergiste"
etape "Les enfants rangés par date de naissance" classer Famille 2
etape "Jean Baptiste et ses faits" personne Famille 2
etape "Les liens du dossier sont symétriques" --json verifier-liens Famille
etape "Un lien qui ferait une boucle est refusé" lier Famille --pere 7 --enfant 5 || echo "(code de sortie $?)"
etape "Suppression d'Élise (restaurable)" supprimer-personne Famille 4
etape "Restauration d'Élise, ses liens retrouvés" restaurer-personne Famille 4
etape "Marie Louise après la restauration" personne Famille 3

printf '\n== GEDCOM : la famille d'"'"'exemple, écrite pour le projet, importée dans un dossier neuf\n'
# Le script s'est placé dans son dossier de travail : son chemin se lit depuis le dossier d'appel.
ged="$(cd "$OLDPWD" && cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)/tests/gedcom/donnees/famille_exemple.ged"
cp "$ged" famille_exemple.ged
etape "Import (le fichier n'est jamais changé)" importer famille_exemple.ged Gedcom --creer
etape "Quatre générations importées" personnes Gedcom
etape "Jean Baptiste : prénom usuel, liens, union avec témoin et source, résidence en fourchette" personne Gedcom 3
etape "Pierre : décès au calendrier républicain, témoin cité" evenements Gedcom 1
etape "Export en GEDCOM 5.5.1 (UTF-8)" exporter Gedcom export.ged
head -n 24 export.ged
etape "Relu dans un autre dossier : les mêmes comptes" --json importer export.ged Relu --creer
printf '\n== Un fichier qui n'"'"'est pas du GEDCOM est refusé, sans laisser de dossier\n'
printf '\x7fELF\x02\x01\x01 binaire' > binaire.ged
"$rqbase" importer binaire.ged Binaire --creer || echo "(code de sortie $?)"
ls -d Binaire.rq2 2>/dev/null || echo "(aucun dossier Binaire.rq2)"
