# Bout en bout de l'index des noms : chercher, index, index reconstruire, par le vrai binaire.
# Les personnes ajoutées par ajouter-personne et liées par lier sont indexées sans qu'on le
# demande. Les fonctions rq_cas et rq_cas_action viennent de cas_dossier.cmake.

rq_cas(index 01_creer SORTIE [=[Dossier créé : Famille.rq2
]=] ARGS creer Famille)
rq_cas(index 02_tour SORTIE [=[Personne 2 ajoutée.
]=] ARGS ajouter-personne Famille --nom "de la Tour" --prenoms Jean --sexe M)
# Le ';' d'un argument ne passe pas par rq_cas (il y sépare les arguments) : le binaire est
# lancé ici directement, le code de sortie seul jugé.
rq_cas_action(index 03_dupont $<TARGET_FILE:rqbase_cli> ajouter-personne Famille --nom "Dupont\;Durand"
  --prenoms "Jean Paul" --sexe M)
rq_cas(index 04_dupuis SORTIE [=[Personne 4 ajoutée.
]=] ARGS ajouter-personne Famille --nom Dupuis --prenoms "Éloïse" --sexe F)
rq_cas(index 05_martin SORTIE [=[Personne 5 ajoutée.
]=] ARGS ajouter-personne Famille --nom Martin --prenoms Louis --sexe M)
rq_cas(index 06_union MOTIF SORTIE [=[.*]=] ARGS lier Famille --conjoint 5 4)

# Particules, casse et accents du critère ne changent rien.
rq_cas(index 07_particules SORTIE [=[2<TAB>M<TAB>de la Tour<TAB>Jean
]=] ARGS chercher Famille --nom "DE LA TÔUR")
rq_cas(index 08_masque JSON SORTIE [=[[
  {
    "annee_max": null,
    "annee_min": null,
    "nom": "Dupont;Durand",
    "numero": 3,
    "prenoms": "Jean Paul",
    "sexe": "M"
  },
  {
    "annee_max": null,
    "annee_min": null,
    "nom": "Dupuis",
    "numero": 4,
    "prenoms": "Éloïse",
    "sexe": "F"
  }
]
]=] ARGS --json chercher Famille --nom "dup*")
# Le second nom suffit.
rq_cas(index 09_second_nom SORTIE [=[3<TAB>M<TAB>Dupont;Durand<TAB>Jean Paul
]=] ARGS chercher Famille --nom "Durand")
rq_cas(index 10_soundex SORTIE [=[3<TAB>M<TAB>Dupont;Durand<TAB>Jean Paul
]=] ARGS chercher Famille --nom Dupond --soundex)
rq_cas(index 11_sans_soundex SORTIE [=[Aucune personne trouvée.
]=] ARGS chercher Famille --nom Dupond)
# Plusieurs prénoms, chacun suffit ; ordre de l'index (DUPONT avant TOUR).
rq_cas(index 12_prenoms SORTIE [=[3<TAB>M<TAB>Dupont;Durand<TAB>Jean Paul
2<TAB>M<TAB>de la Tour<TAB>Jean
]=] ARGS chercher Famille --prenoms "paul jean")
rq_cas(index 13_conjoint SORTIE [=[5<TAB>M<TAB>Martin<TAB>Louis
]=] ARGS chercher Famille --conjoint-nom "dupuis")
rq_cas(index 14_sexe_exclure_limite SORTIE [=[5<TAB>M<TAB>Martin<TAB>Louis
]=] ARGS chercher Famille --nom "*" --sexe M --exclure 2 3 --limite 1)
# Des personnes sans aucun fait daté : leurs années restent inconnues, aucune période ne les prend.
rq_cas(index 15_periode SORTIE [=[Aucune personne trouvée.
]=] ARGS chercher Famille --annees 1800-1900)
rq_cas(index 16_sans_pere SORTIE [=[4<TAB>F<TAB>Dupuis<TAB>Éloïse
]=] ARGS chercher Famille --nom "dupuis" --sans-pere --sans-mere)
rq_cas(index 17_lignes JSON SORTIE [=[[
  {
    "annee_max": 0,
    "annee_min": 0,
    "id": 2,
    "nom": "DUPONT",
    "nom_soundex": "D153",
    "prenom": "JEAN",
    "prenom_soundex": "J5",
    "rg_nom": 1,
    "rg_prenom": 1,
    "sexe": "M",
    "supprime": false,
    "type": "P"
  },
  {
    "annee_max": 0,
    "annee_min": 0,
    "id": 3,
    "nom": "DUPONT",
    "nom_soundex": "D153",
    "prenom": "PAUL",
    "prenom_soundex": "P4",
    "rg_nom": 1,
    "rg_prenom": 2,
    "sexe": "M",
    "supprime": false,
    "type": "P"
  },
  {
    "annee_max": 0,
    "annee_min": 0,
    "id": 4,
    "nom": "DURAND",
    "nom_soundex": "D653",
    "prenom": "JEAN",
    "prenom_soundex": "J5",
    "rg_nom": 2,
    "rg_prenom": 1,
    "sexe": "M",
    "supprime": false,
    "type": "P"
  },
  {
    "annee_max": 0,
    "annee_min": 0,
    "id": 5,
    "nom": "DURAND",
    "nom_soundex": "D653",
    "prenom": "PAUL",
    "prenom_soundex": "P4",
    "rg_nom": 2,
    "rg_prenom": 2,
    "sexe": "M",
    "supprime": false,
    "type": "P"
  }
]
]=] ARGS --json index Famille 3)
rq_cas(index 18_reconstruire JSON SORTIE [=[{
  "lignes": 8,
  "personnes": 5
}
]=] ARGS --json index reconstruire Famille)
# Après la reconstruction, la mémoire est relue de son fichier .prx : mêmes réponses.
rq_cas(index 19_apres SORTIE [=[3<TAB>M<TAB>Dupont;Durand<TAB>Jean Paul
4<TAB>F<TAB>Dupuis<TAB>Éloïse
]=] ARGS chercher Famille --nom "dup*")
# Un fichier .prx abîmé est refait depuis la table, sans un mot.
rq_cas_action(index 20_abime ${CMAKE_COMMAND} -E copy Famille.rq2/Famille.xin Famille.rq2/Famille.prx)
rq_cas(index 21_abime_refait SORTIE [=[3<TAB>M<TAB>Dupont;Durand<TAB>Jean Paul
4<TAB>F<TAB>Dupuis<TAB>Éloïse
]=] ARGS chercher Famille --nom "dup*")

# Refus.
rq_cas(index 22_personne_absente CODE 1 ERREUR [=[rqbase : La personne 99 n'existe pas dans ce dossier.
]=] ARGS index Famille 99)
rq_cas(index 23_sexe_refuse CODE 2 ERREUR [=[rqbase : valeur refusée : le sexe doit être M, F ou ?
rqbase --aide pour l'aide.
]=] ARGS chercher Famille --sexe H)
rq_cas(index 24_annees_refusees CODE 2 ERREUR [=[rqbase : valeur refusée : période attendue sous la forme 1800-1850
rqbase --aide pour l'aide.
]=] ARGS chercher Famille --annees 1900)
rq_cas(index 25_sans_dossier CODE 2 ERREUR [=[rqbase : argument ou option obligatoire manquant : DOSSIER et N
rqbase --aide pour l'aide.
]=] ARGS index Famille)
# Rien n'a été écrit par les lectures : la recherche d'un dossier en lecture ne garde pas la
# mémoire qu'elle a refaite, et l'ajout d'une personne efface le fichier qui ne la connaît pas.
rq_cas(index 26_ajout SORTIE [=[Personne 6 ajoutée.
]=] ARGS ajouter-personne Famille --nom "Zola" --prenoms "Émile" --sexe M)
rq_cas(index 27_ajout_trouve SORTIE [=[6<TAB>M<TAB>Zola<TAB>Émile
]=] ARGS chercher Famille --prenoms emile)

# Équivalences de noms : un groupe écrit par la commande, puis la recherche qui les demande.
rq_cas_action(index 28_equivalence $<TARGET_FILE:rqbase_cli> equivalences Famille --ajouter "Dupuis\;Dupont")
rq_cas(index 29_equivalences JSON SORTIE [=[{
  "avertissements": [],
  "groupes": [
    [
      "Dupuis",
      "Dupont"
    ]
  ]
}
]=] ARGS --json equivalences Famille)
rq_cas(index 30_sans_equivalences SORTIE [=[4<TAB>F<TAB>Dupuis<TAB>Éloïse
]=] ARGS chercher Famille --nom dupuis)
rq_cas(index 31_avec_equivalences SORTIE [=[3<TAB>M<TAB>Dupont;Durand<TAB>Jean Paul
4<TAB>F<TAB>Dupuis<TAB>Éloïse
]=] ARGS chercher Famille --nom dupuis --equivalences)
rq_cas(index 32_groupe_refuse CODE 1 ERREUR [=[rqbase : Un groupe d'équivalences demande au moins deux graphies différentes, séparées par ';'.
]=] ARGS equivalences Famille --ajouter "Dupuis")
rq_cas(index 33_sans_prenoms SORTIE [=[Aucune équivalence.
]=] ARGS equivalences Famille --prenoms)
# Un fait : libellé, donnée.
rq_cas(index 34_profession MOTIF SORTIE [=[.*]=] ARGS evenement ajouter Famille 5 PROFESSION --donnee "Tisserand")
rq_cas(index 35_par_fait SORTIE [=[5<TAB>M<TAB>Martin<TAB>Louis
]=] ARGS chercher Famille --evenement "prof*" --donnee "tiss*")
rq_cas(index 36_fait_absent SORTIE [=[Aucune personne trouvée.
]=] ARGS chercher Famille --evenement NAISSANCE)
# Des valeurs d'options refusées en français.
rq_cas(index 37_limite_refusee CODE 2 ERREUR [=[rqbase : valeur refusée : -1 n'est pas un entier d'au moins 0
rqbase --aide pour l'aide.
]=] ARGS chercher Famille --limite -1)
rq_cas(index 38_exclure_refuse CODE 2 ERREUR [=[rqbase : valeur refusée : 0 n'est pas un entier d'au moins 1
rqbase --aide pour l'aide.
]=] ARGS chercher Famille --exclure 0)
# Un nom fait seulement de particules ou de signes cherche les personnes sans nom : ici la
# fiche 1, réservée par la création et vide, que la reconstruction a indexée comme toute fiche
# non supprimée.
rq_cas(index 39_particules_seules SORTIE [=[1<TAB>?<TAB><TAB>
]=] ARGS chercher Famille --nom "de la")
