# Bout en bout des liens de famille et des faits d'une personne (rq_cas : voir cas_dossier.cmake) :
# un couple, deux enfants, leurs naissances, une union datée, professions et titre, l'ordre des
# enfants, une suppression puis une restauration, une union ôtée, un lien défait.

rq_cas(famille 01_creer SORTIE [=[Dossier créé : Famille.rq2
]=] ARGS creer Famille --premiere-personne)
rq_cas(famille 02_jean SORTIE [=[Personne 2 ajoutée.
]=] ARGS ajouter-personne Famille --nom Martin --prenoms Jean --sexe M)
rq_cas(famille 03_marie SORTIE [=[Personne 3 ajoutée.
]=] ARGS ajouter-personne Famille --nom Durand --prenoms Marie --sexe F)
rq_cas(famille 04_paul SORTIE [=[Personne 4 ajoutée.
]=] ARGS ajouter-personne Famille --nom Martin --prenoms Paul --sexe M)
rq_cas(famille 05_louise SORTIE [=[Personne 5 ajoutée.
]=] ARGS ajouter-personne Famille --nom Martin --prenoms Louise --sexe F)
# Le couple, avec un événement d'union vierge partagé par les deux.
rq_cas(famille 06_couple SORTIE [=[Lien enregistré.
]=] ARGS lier Famille --conjoint 2 3 --union)
rq_cas(famille 07_paul_parents JSON SORTIE [=[{
  "change": true
}
]=] ARGS --json lier Famille --pere 2 --mere 3 --enfant 4)
# Un lien qui existe déjà ne change rien.
rq_cas(famille 08_deja JSON SORTIE [=[{
  "change": false
}
]=] ARGS --json lier Famille --pere 2 --enfant 4)
rq_cas(famille 09_louise_parents SORTIE [=[Lien enregistré.
]=] ARGS lier Famille --pere 2 --mere 3 --enfant 5)
rq_cas(famille 10_naissance_paul JSON SORTIE [=[{
  "numero": 11,
  "rang": 1
}
]=] ARGS --json evenement ajouter Famille 4 NAISSANCE --date "12 mars 1852" --lieu Lyon --code 69 --pays France)
rq_cas(famille 11_naissance_louise JSON SORTIE [=[{
  "numero": 12,
  "rang": 1
}
]=] ARGS --json evenement ajouter Famille 5 NAISSANCE --date 1850)
# Une union datée : l'union vierge, sans date, garde sa place.
rq_cas(famille 12_union_datee JSON SORTIE [=[{
  "numero": 13,
  "rang": 2
}
]=] ARGS --json evenement ajouter Famille 2 UNION --date "#caG../../1849#" --conjoint 3)
rq_cas(famille 13_professions JSON SORTIE [=[{
  "numero": 2,
  "professions": "menuisier,charron"
}
]=] ARGS --json professions Famille 2 menuisier,charron)
rq_cas(famille 14_titre JSON SORTIE [=[{
  "numero": 16,
  "rang": 3
}
]=] ARGS --json champ ajouter Famille 2 TITRE maître)
# Louise, née avant Paul, passe devant lui.
rq_cas(famille 15_classer JSON SORTIE [=[{
  "conjoints": [
    3
  ],
  "enfants": [
    5,
    4
  ],
  "numero": 2
}
]=] ARGS --json classer Famille 2)
rq_cas(famille 16_evenements_jean SORTIE [=[1<TAB>UNION<TAB><TAB><TAB><TAB>
2<TAB>UNION<TAB>ca../../1849<TAB><TAB><TAB>
3<TAB>PROFESSION<TAB><TAB><TAB><TAB>menuisier
4<TAB>PROFESSION<TAB><TAB><TAB><TAB>charron
1<TAB>DCF<TAB><HORODATE>
2<TAB>DDMF<TAB><HORODATE>
3<TAB>TITRE<TAB>maître
]=] ARGS evenements Famille 2)
# Marie voit les deux unions : un seul enregistrement pour le couple.
rq_cas(famille 17_marie JSON SORTIE [=[{
  "champs": [
    {
      "donnee": "<HORODATE>",
      "libelle": "DCF",
      "numero": 5,
      "personne_a": 3,
      "personne_b": 0,
      "rang": 1
    },
    {
      "donnee": "<HORODATE>",
      "libelle": "DDMF",
      "numero": 6,
      "personne_a": 3,
      "personne_b": 0,
      "rang": 2
    }
  ],
  "conjoints": [
    2
  ],
  "enfants": [
    4,
    5
  ],
  "evenements": [
    {
      "acte": "",
      "calendrier": "G",
      "date": "",
      "donnee": "",
      "illustrations": [],
      "libelle": "UNION",
      "lieu": 0,
      "lieu_dit": "",
      "lieu_texte": "",
      "note": 0,
      "numero": 2,
      "personne_a": 2,
      "personne_b": 3,
      "personnes_citees": [],
      "rang": 1,
      "sources": []
    },
    {
      "acte": "ca",
      "calendrier": "G",
      "date": "../../1849",
      "donnee": "",
      "illustrations": [],
      "libelle": "UNION",
      "lieu": 0,
      "lieu_dit": "",
      "lieu_texte": "",
      "note": 0,
      "numero": 13,
      "personne_a": 2,
      "personne_b": 3,
      "personnes_citees": [],
      "rang": 2,
      "sources": []
    }
  ],
  "extension": 0,
  "mere": 0,
  "nom": "Durand",
  "note": 0,
  "numero": 3,
  "pere": 0,
  "prenom_usuel": 0,
  "prenoms": "Marie",
  "sexe": "F",
  "supprime": false,
  "type": "P"
}
]=] ARGS --json personne Famille 3)
rq_cas(famille 18_supprimer SORTIE [=[Personne 5 supprimée.
]=] ARGS supprimer-personne Famille 5 --anonymiser)
# Supprimée, Louise garde ses propres liens ; plus personne ne la nomme.
rq_cas(famille 19_louise_supprimee SORTIE [=[Numéro      : 5 (supprimée)
Type        : P
Nom         : XXX
Prénoms     :  (usuel : 0)
Sexe        : F
Père, mère  : 2, 3
Conjoints   : -
Enfants     : -
Note        : 0
Débordement : 0
]=] ARGS personne Famille 5)
rq_cas(famille 20_jean_sans_louise SORTIE [=[Numéro      : 2
Type        : P
Nom         : Martin
Prénoms     : Jean (usuel : 0)
Sexe        : M
Père, mère  : 0, 0
Conjoints   : 3
Enfants     : 4
Note        : 0
Débordement : 0
1<TAB>UNION<TAB><TAB><TAB><TAB>
2<TAB>UNION<TAB>ca../../1849<TAB><TAB><TAB>
3<TAB>PROFESSION<TAB><TAB><TAB><TAB>menuisier
4<TAB>PROFESSION<TAB><TAB><TAB><TAB>charron
1<TAB>DCF<TAB><HORODATE>
2<TAB>DDMF<TAB><HORODATE>
3<TAB>TITRE<TAB>maître
]=] ARGS personne Famille 2)
rq_cas(famille 21_verifier JSON SORTIE [=[{
  "modifiees": [],
  "verifiees": 5
}
]=] ARGS --json verifier-liens Famille)
rq_cas(famille 22_restaurer SORTIE [=[Personne 5 restaurée.
]=] ARGS restaurer-personne Famille 5)
rq_cas(famille 23_jean_avec_louise JSON SORTIE [=[{
  "conjoints": [
    3
  ],
  "enfants": [
    5,
    4
  ],
  "numero": 2
}
]=] ARGS --json classer Famille 2)
rq_cas(famille 24_supprimer_union_vierge JSON SORTIE [=[{
  "numero": 2,
  "supprime": true
}
]=] ARGS --json evenement supprimer Famille 2 1)
rq_cas(famille 25_evenements_marie SORTIE [=[1<TAB>UNION<TAB>ca../../1849<TAB><TAB><TAB>
1<TAB>DCF<TAB><HORODATE>
2<TAB>DDMF<TAB><HORODATE>
]=] ARGS evenements Famille 3)
rq_cas(famille 26_delier JSON SORTIE [=[{
  "change": true
}
]=] ARGS --json delier Famille --pere 2 --enfant 4)
rq_cas(famille 27_delier_encore JSON SORTIE [=[{
  "change": false
}
]=] ARGS --json delier Famille --pere 2 --enfant 4)
rq_cas(famille 28_paul SORTIE [=[Numéro      : 4
Type        : P
Nom         : Martin
Prénoms     : Paul (usuel : 0)
Sexe        : M
Père, mère  : 0, 3
Conjoints   : -
Enfants     : -
Note        : 0
Débordement : 0
1<TAB>NAISSANCE<TAB>12/03/1852<TAB>Lyon, France<TAB><TAB>
1<TAB>DCF<TAB><HORODATE>
2<TAB>DDMF<TAB><HORODATE>
]=] ARGS personne Famille 4)

# Le prénom usuel : tapé entre guillemets, gardé par son rang, montré entre guillemets en texte.
rq_cas(prenom_usuel 01_creer SORTIE [=[Dossier créé : Famille.rq2
]=] ARGS creer Famille)
# Le prénom usuel est tapé entre guillemets.
rq_cas(prenom_usuel 02_usuel SORTIE [=[Personne 2 ajoutée.
]=] ARGS ajouter-personne Famille --nom "de la Tour" --prenoms "Jean \"Paul\" Marie" --sexe M)
rq_cas(prenom_usuel 03_fiche SORTIE [=[Numéro      : 2
Type        : P
Nom         : de la Tour
Prénoms     : Jean "Paul" Marie (usuel : 2)
Sexe        : M
Père, mère  : 0, 0
Conjoints   : -
Enfants     : -
Note        : 0
Débordement : 0
]=] ARGS personne Famille 2)
rq_cas(prenom_usuel 04_json JSON SORTIE [=[{
  "champs": [],
  "conjoints": [],
  "enfants": [],
  "evenements": [],
  "extension": 0,
  "mere": 0,
  "nom": "de la Tour",
  "note": 0,
  "numero": 2,
  "pere": 0,
  "prenom_usuel": 2,
  "prenoms": "Jean Paul Marie",
  "sexe": "M",
  "supprime": false,
  "type": "P"
}
]=] ARGS --json personne Famille 2)
rq_cas(prenom_usuel 05_sans_guillemets JSON SORTIE [=[{
  "numero": 3
}
]=] ARGS --json ajouter-personne Famille --nom Martin --prenoms Louis --sexe M)
