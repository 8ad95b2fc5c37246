# Bout en bout de l'import et de l'export GEDCOM (rq_cas : voir cas_dossier.cmake) : fichier
# absent ou illisible refusés sans laisser de dossier, la famille d'exemple importée dans un
# dossier créé puis ajoutée une seconde fois, l'export, son refus d'écraser, et le fichier
# exporté relu dans un autre dossier.
set(rq_gedcom_donnees ${CMAKE_SOURCE_DIR}/tests/gedcom/donnees)

rq_cas(gedcom 01_absent CODE 1 ERREUR [=[rqbase : Le fichier "absent.ged" est introuvable.
]=] ARGS importer absent.ged Famille --creer)
rq_cas_action(gedcom 02_copie ${CMAKE_COMMAND} -E copy ${rq_gedcom_donnees}/famille_exemple.ged
  ${rq_gedcom_donnees}/illisible.ged .)
rq_cas(gedcom 03_illisible CODE 1 ERREUR [=[rqbase : Ce fichier n'est pas un fichier GEDCOM : aucune ligne n'y a la forme « niveau balise valeur ».
]=] ARGS importer illisible.ged Illisible --creer)
# Rien n'a été créé pour le fichier illisible.
rq_cas(gedcom 04_pas_de_dossier CODE 1 ERREUR [=[rqbase : Le dossier "Illisible" est introuvable.
]=] ARGS info Illisible)
rq_cas(gedcom 05_importer SORTIE [=[Import de famille_exemple.ged (UTF-8, GEDCOM 5.5.1)
Personnes : 8
Familles : 3
Événements : 17
Lieux : 4
Sources : 2
Médias : 0
Notes : 1
Avertissements : 0
]=] ARGS importer famille_exemple.ged Famille --creer)
# L'index des noms, refait à la fin de l'import, trouve les personnes (particule comprise).
rq_cas(gedcom 05b_chercher SORTIE [=[7<TAB>F<TAB>de La Fontaine<TAB>Jeanne<TAB>1850-1955
]=] ARGS chercher Famille --nom "de la fontaine")
# Sans --creer, l'import s'ajoute : les lieux sont déjà là.
rq_cas(gedcom 06_ajouter JSON SORTIE [=[{
  "avertissements": [],
  "evenements": 17,
  "familles": 3,
  "lieux": 0,
  "medias": 0,
  "notes": 1,
  "personnes": 8,
  "sources": 2
}
]=] ARGS --json importer famille_exemple.ged Famille)
rq_cas(gedcom 07_jean_baptiste SORTIE [=[Numéro      : 3
Type        : P
Nom         : Lefèvre
Prénoms     : Jean "Baptiste" (usuel : 2)
Sexe        : M
Père, mère  : 1, 2
Conjoints   : 4
Enfants     : 6, 5
Note        : 0
Débordement : 0
1<TAB>NAISSANCE<TAB>14/06/1821<TAB>Amiens, Somme, Picardie, France<TAB>Saint-Leu<TAB>
2<TAB>UNION<TAB>08/05/1845<TAB>Saint-Étienne, Loire, Rhône-Alpes, France<TAB><TAB>
<TAB>source<TAB>Générale<TAB>Registre paroissial de Saint-Étienne, acte 112
<TAB>citée<TAB>1<TAB>Témoin<TAB>
3<TAB>RESIDENCE<TAB>1850/1860<TAB><TAB><TAB>12 rue des Majots
4<TAB>PROFESSION<TAB><TAB><TAB><TAB>tisserand
5<TAB>PROFESSION<TAB><TAB><TAB><TAB>aubergiste
]=] ARGS personne Famille 3)
rq_cas(gedcom 08_exporter SORTIE [=[Export vers export.ged : 16 personnes, 6 familles, 34 faits.
]=] ARGS exporter Famille export.ged)
rq_cas(gedcom 09_pas_d_ecrasement CODE 1 ERREUR [=[rqbase : Le fichier "export.ged" existe déjà : rien n'a été écrit (--remplacer pour le remplacer).
]=] ARGS exporter Famille export.ged)
rq_cas(gedcom 10_remplacer JSON SORTIE [=[{
  "evenements": 34,
  "familles": 6,
  "personnes": 16,
  "sans_balise": 0,
  "vivants": 0
}
]=] ARGS --json exporter Famille export.ged --vivants exclure --remplacer)
rq_cas(gedcom 11_relire JSON SORTIE [=[{
  "avertissements": [],
  "evenements": 34,
  "familles": 6,
  "lieux": 4,
  "medias": 0,
  "notes": 2,
  "personnes": 16,
  "sources": 4
}
]=] ARGS --json importer export.ged Copie --creer)
rq_cas(gedcom 12_vivants_inconnu CODE 2 ERREUR [=[rqbase : valeur refusée : la valeur doit être exclure ou anonymiser
rqbase --aide pour l'aide.
]=] ARGS exporter Famille autre.ged --vivants tous)
# Un import qui échoue au milieu (la taille des fichiers bornée : le disque « plein ») dans un
# dossier qui existait est défait : chaque fichier du dossier revient à l'octet près, et le
# message le dit sans renvoyer à un menu.
rq_cas_action(gedcom 13_import_defait sh ${rq_gedcom_donnees}/import_defait.sh $<TARGET_FILE:rqbase_cli> Famille)
rq_cas(gedcom 14_apres_import_defait JSON SORTIE [=[{
  "avertissements": [],
  "evenements": 17,
  "familles": 3,
  "lieux": 0,
  "medias": 0,
  "notes": 1,
  "personnes": 8,
  "sources": 2
}
]=] ARGS --json importer famille_exemple.ged Famille)
# --creer sur un dossier qui existe : refusé d'un message, sans question à l'utilisateur.
rq_cas(gedcom 15_creer_existant CODE 1 ERREUR [=[rqbase : Le dossier "Famille" existe déjà : rien n'a été changé (sans --creer, l'import s'y ajoute).
]=] ARGS importer famille_exemple.ged Famille --creer)
# Le dossier à créer nommé par son .prs, comme les autres commandes le nomment : pas de
# dossier dans un dossier (le second import trouve le .prs créé par le premier).
rq_cas(gedcom 16_creer_par_prs JSON SORTIE [=[{
  "avertissements": [],
  "evenements": 17,
  "familles": 3,
  "lieux": 4,
  "medias": 0,
  "notes": 1,
  "personnes": 8,
  "sources": 2
}
]=] ARGS --json importer famille_exemple.ged Neuf.rq2/Neuf.prs --creer)
rq_cas(gedcom 18_creer_par_prs_existant CODE 1 ERREUR [=[rqbase : Le dossier "Neuf.rq2/Neuf.prs" existe déjà : rien n'a été changé (sans --creer, l'import s'y ajoute).
]=] ARGS importer famille_exemple.ged Neuf.rq2/Neuf.prs --creer)
