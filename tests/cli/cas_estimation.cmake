# Bout en bout de l'estimation des dates de vie (rq_cas : voir cas_dossier.cmake) : un couple,
# deux enfants datés, le père du mari né et mort à date exacte, une union « vers 1849 ». Le mari
# n'a aucune date à lui : sa naissance vient de l'union, des enfants et de son père, son décès
# des enfants. Toutes les personnes estimées sont mortes à coup sûr : l'âge ne dépend pas du jour.

rq_cas(estimation 01_creer SORTIE [=[Dossier créé : Famille.rq2
]=] ARGS creer Famille --premiere-personne)
rq_cas(estimation 02_jean SORTIE [=[Personne 2 ajoutée.
]=] ARGS ajouter-personne Famille --nom Martin --prenoms Jean --sexe M)
rq_cas(estimation 03_marie SORTIE [=[Personne 3 ajoutée.
]=] ARGS ajouter-personne Famille --nom Durand --prenoms Marie --sexe F)
rq_cas(estimation 04_paul SORTIE [=[Personne 4 ajoutée.
]=] ARGS ajouter-personne Famille --nom Martin --prenoms Paul --sexe M)
rq_cas(estimation 05_louise SORTIE [=[Personne 5 ajoutée.
]=] ARGS ajouter-personne Famille --nom Martin --prenoms Louise --sexe F)
rq_cas(estimation 06_pierre SORTIE [=[Personne 6 ajoutée.
]=] ARGS ajouter-personne Famille --nom Martin --prenoms Pierre --sexe M)
rq_cas(estimation 07_couple SORTIE [=[Lien enregistré.
]=] ARGS lier Famille --conjoint 2 3)
rq_cas(estimation 08_paul_parents SORTIE [=[Lien enregistré.
]=] ARGS lier Famille --pere 2 --mere 3 --enfant 4)
rq_cas(estimation 09_louise_parents SORTIE [=[Lien enregistré.
]=] ARGS lier Famille --pere 2 --mere 3 --enfant 5)
rq_cas(estimation 10_pere_de_jean SORTIE [=[Lien enregistré.
]=] ARGS lier Famille --pere 6 --enfant 2)
rq_cas(estimation 11_naissance_paul SORTIE [=[Événement 12 ajouté au rang 1.
]=] ARGS evenement ajouter Famille 4 NAISSANCE --date "12 mars 1852")
rq_cas(estimation 12_naissance_louise SORTIE [=[Événement 13 ajouté au rang 1.
]=] ARGS evenement ajouter Famille 5 NAISSANCE --date 1850)
rq_cas(estimation 13_naissance_pierre SORTIE [=[Événement 14 ajouté au rang 1.
]=] ARGS evenement ajouter Famille 6 NAISSANCE --date 01/01/1790)
rq_cas(estimation 14_deces_pierre SORTIE [=[Événement 15 ajouté au rang 2.
]=] ARGS evenement ajouter Famille 6 DECES --date 01/01/1860)
rq_cas(estimation 15_union SORTIE [=[Événement 16 ajouté au rang 1.
]=] ARGS evenement ajouter Famille 2 UNION --date "#caG../../1849#" --conjoint 3)

# Jean : l'union (1848 à 1851, « vers » élargit d'un an) le fait naître de 1778 à 1834 ; ses
# enfants (Paul le 12 mars 1852, Louise en 1850) de 1802,2 à 1833 ; son père né en 1790 après
# 1808. Il meurt après la naissance de Paul, au plus cent ans après sa naissance.
rq_cas(estimation 16_jean JSON SORTIE [=[{
  "age_estime": 72,
  "annee_deces": null,
  "annee_naissance": null,
  "deces": {
    "max": 1933.0,
    "min": 1852.2
  },
  "naissance": {
    "max": 1833.0,
    "min": 1808.0
  },
  "procreation": {
    "max": 1883.74,
    "min": 1826.0
  },
  "union": {
    "max": 1851.0,
    "min": 1848.0
  }
}
]=] ARGS --json estimer Famille 2)
rq_cas(estimation 17_jean_texte SORTIE [=[Naissance          : entre 1808,00 et 1833,00
Décès              : entre 1852,20 et 1933,00
Première union     : entre 1848,00 et 1851,00
Enfants possibles  : entre 1826,00 et 1883,74
Année de naissance : inconnue
Année de décès     : inconnue
Âge estimé         : 72 ans
]=] ARGS estimer Famille 2)
# Une année seule (Louise, 1850) n'est pas exacte : un intervalle, pas d'année.
rq_cas(estimation 18_louise SORTIE [=[Naissance          : entre 1850,00 et 1851,00
Décès              : entre 1850,00 et 1951,00
Première union     : entre 1867,00 et 1921,00
Enfants possibles  : entre 1865,00 et 1901,01
Année de naissance : inconnue
Année de décès     : inconnue
Âge estimé         : 50 ans
]=] ARGS estimer Famille 5)
# Pierre, né et mort à date exacte : les deux années, l'âge au décès.
rq_cas(estimation 19_pierre JSON SORTIE [=[{
  "age_estime": 70,
  "annee_deces": 1860.0,
  "annee_naissance": 1790.0,
  "deces": {
    "max": 1860.0,
    "min": 1860.0
  },
  "naissance": {
    "max": 1790.0,
    "min": 1790.0
  },
  "procreation": {
    "max": 1840.74,
    "min": 1808.0
  },
  "union": {
    "max": 1860.0,
    "min": 1807.0
  }
}
]=] ARGS --json estimer Famille 6)
rq_cas(estimation 20_pierre_texte SORTIE [=[Naissance          : en 1790,00
Décès              : en 1860,00
Première union     : entre 1807,00 et 1860,00
Enfants possibles  : entre 1808,00 et 1840,74
Année de naissance : 1790,00
Année de décès     : 1860,00
Âge estimé         : 70 ans
]=] ARGS estimer Famille 6)
# Rien de connu : tout est ouvert.
rq_cas(estimation 21_inconnu JSON SORTIE [=[{
  "age_estime": null,
  "annee_deces": null,
  "annee_naissance": null,
  "deces": {
    "max": null,
    "min": null
  },
  "naissance": {
    "max": null,
    "min": null
  },
  "procreation": {
    "max": null,
    "min": null
  },
  "union": {
    "max": null,
    "min": null
  }
}
]=] ARGS --json estimer Famille 1)
rq_cas(estimation 22_inconnu_texte SORTIE [=[Naissance          : inconnue
Décès              : inconnu
Première union     : inconnue
Enfants possibles  : inconnu
Année de naissance : inconnue
Année de décès     : inconnue
Âge estimé         : inconnu
]=] ARGS estimer Famille 1)
rq_cas(estimation 23_hors_fichier CODE 1 ERREUR [=[rqbase : La personne 99 n'existe pas dans ce dossier.
]=] ARGS estimer Famille 99)
rq_cas(estimation 24_numero_illisible CODE 2 ERREUR [=[rqbase : valeur invalide : N = deux
rqbase --aide pour l'aide.
]=] ARGS estimer Famille deux)
rq_cas(estimation 25_dossier_absent CODE 1 ERREUR [=[rqbase : Le dossier "Absent" est introuvable.
]=] ARGS estimer Absent 2)

# L'index des noms prend ses années de l'estimation (borne basse de la naissance, borne haute
# du décès), à chaque enregistrement d'une personne comme à la reconstruction ; la recherche par
# période s'en sert.
rq_cas(estimation 26_index_annees SORTIE [=[2<TAB>M<TAB>Martin<TAB>Jean<TAB>1808-1933
5<TAB>F<TAB>Martin<TAB>Louise<TAB>1850-1951
4<TAB>M<TAB>Martin<TAB>Paul<TAB>1852-1952
6<TAB>M<TAB>Martin<TAB>Pierre<TAB>1790-1860
]=] ARGS chercher Famille --nom Martin)
rq_cas(estimation 27_periode SORTIE [=[6<TAB>M<TAB>Martin<TAB>Pierre<TAB>1790-1860
]=] ARGS chercher Famille --annees 1780-1800)
rq_cas(estimation 28_periode_tardive SORTIE [=[5<TAB>F<TAB>Martin<TAB>Louise<TAB>1850-1951
4<TAB>M<TAB>Martin<TAB>Paul<TAB>1852-1952
]=] ARGS chercher Famille --annees 1940-1960)
rq_cas(estimation 29_reconstruire SORTIE [=[Index reconstruit : 6 personnes, 6 lignes.
]=] ARGS index reconstruire Famille)
rq_cas(estimation 30_apres_reconstruction SORTIE [=[3<TAB>F<TAB>Durand<TAB>Marie<TAB>1802-1934
]=] ARGS chercher Famille --nom Durand)
