# Bout en bout des chaînes partagées : lieux, qualités et liens de parenté, par le vrai binaire.
# Les fonctions rq_cas et rq_cas_action viennent de cas_dossier.cmake.

rq_cas(lieux 01_creer SORTIE [=[Dossier créé : Famille.rq2
]=] ARGS creer Famille)
rq_cas(lieux 02_ajouter JSON SORTIE [=[{
  "numero": 1,
  "rang": 0
}
]=] ARGS --json lieu ajouter Famille --commune Lyon --code 69 --region Rhône --pays France)
rq_cas(lieux 03_ajouter_avant SORTIE [=[Valeur 2 (rang 0).
]=] ARGS lieu ajouter Famille --commune Amiens --code 80)
# Le même texte retrouve son numéro ; un accent fait une autre valeur, rangée à côté.
rq_cas(lieux 04_meme_valeur SORTIE [=[Valeur 1 (rang 1).
]=] ARGS lieu ajouter Famille --commune Lyon --code 69 --region Rhône --pays France)
rq_cas(lieux 05_accent SORTIE [=[Valeur 3 (rang 1).
]=] ARGS lieu ajouter Famille --commune Évreux)
rq_cas(lieux 06_sans_accent SORTIE [=[Valeur 4 (rang 1).
]=] ARGS lieu ajouter Famille --commune Evreux)
rq_cas(lieux 07_liste SORTIE [=[2<TAB>0<TAB>Amiens<TAB>80<TAB><TAB>
4<TAB>1<TAB>Evreux<TAB><TAB><TAB>
3<TAB>2<TAB>Évreux<TAB><TAB><TAB>
1<TAB>3<TAB>Lyon<TAB>69<TAB>Rhône<TAB>France
]=] ARGS lieu liste Famille)
rq_cas(lieux 08_supprimer SORTIE [=[Valeur 3 supprimée.
]=] ARGS lieu supprimer Famille --numero 3)
rq_cas(lieux 09_liste_supprimes JSON SORTIE [=[[
  {
    "code": "80",
    "commune": "Amiens",
    "numero": 2,
    "pays": "",
    "rang": 0,
    "region": "",
    "supprime": false
  },
  {
    "code": "",
    "commune": "Evreux",
    "numero": 4,
    "pays": "",
    "rang": 1,
    "region": "",
    "supprime": false
  },
  {
    "code": "",
    "commune": "Évreux",
    "numero": 3,
    "pays": "",
    "rang": -1,
    "region": "",
    "supprime": true
  },
  {
    "code": "69",
    "commune": "Lyon",
    "numero": 1,
    "pays": "France",
    "rang": 2,
    "region": "Rhône",
    "supprime": false
  }
]
]=] ARGS --json lieu liste Famille --supprimes)
rq_cas(lieux 10_chercher_supprime JSON SORTIE [=[{
  "numero": 3
}
]=] ARGS --json lieu chercher Famille --commune Évreux)
rq_cas(lieux 11_chercher_absent JSON SORTIE [=[{
  "numero": 0
}
]=] ARGS --json lieu chercher Famille --commune Paris)
# Retapée, une valeur supprimée revient sous son ancien numéro.
rq_cas(lieux 12_retour SORTIE [=[Valeur 3 (rang 2).
]=] ARGS lieu ajouter Famille --commune Évreux)
rq_cas(lieux 13_supprimer_rang SORTIE [=[Valeur 2 supprimée.
]=] ARGS lieu supprimer Famille --rang 0)
rq_cas(lieux 14_rang_absent CODE 1 ERREUR [=[rqbase : Aucune valeur à ce rang : rien n'a été supprimé.
]=] ARGS lieu supprimer Famille --rang 9)
rq_cas(lieux 15_les_deux CODE 1 ERREUR [=[rqbase : Donner --rang ou --numero, l'un des deux.
]=] ARGS lieu supprimer Famille --rang 0 --numero 1)
rq_cas(lieux 16_emoji CODE 1 ERREUR [=[rqbase : Le caractère U+1F333 (dans la commune) n'existe pas dans le codage des dossiers (Windows-1252) : rien n'a été enregistré.
]=] ARGS lieu ajouter Famille --commune "Lyon 🌳")
rq_cas(lieux 17_sans_commune CODE 2 ERREUR [=[rqbase : argument ou option obligatoire manquant : --commune
rqbase --aide pour l'aide.
]=] ARGS lieu ajouter Famille)
rq_cas(lieux 18_qualite JSON SORTIE [=[{
  "numero": 1,
  "rang": 0
}
]=] ARGS --json qualite ajouter Famille --valeur Témoin)
rq_cas(lieux 19_parente SORTIE [=[Valeur 1 (rang 0).
]=] ARGS parente ajouter Famille --valeur Cousin)
rq_cas(lieux 20_parente_liste JSON SORTIE [=[[
  {
    "numero": 1,
    "rang": 0,
    "supprime": false,
    "valeur": "Cousin"
  }
]
]=] ARGS --json parente liste Famille)
rq_cas(lieux 21_valeur_absente CODE 2 ERREUR [=[rqbase : il manque la valeur de l'option --valeur
rqbase --aide pour l'aide.
]=] ARGS qualite ajouter Famille --valeur)
