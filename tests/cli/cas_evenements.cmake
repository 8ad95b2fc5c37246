# Bout en bout de la commande evenements (rq_cas : voir cas_dossier.cmake). Les lignes de la
# base sont posées par le programme sqlite3, comme un autre outil les écrirait ; certaines
# sont fausses à dessein (lieu et note au-delà de leurs fichiers, rangs et _DATE à refaire).

rq_cas(evenements 01_creer SORTIE [=[Dossier créé : Famille.rq2
]=] ARGS creer Famille --premiere-personne)
rq_cas(evenements 02_louise SORTIE [=[Personne 2 ajoutée.
]=] ARGS ajouter-personne Famille --nom Martin --prenoms Louise --sexe F)
rq_cas(evenements 03_paul SORTIE [=[Personne 3 ajoutée.
]=] ARGS ajouter-personne Famille --nom Durand --prenoms Paul --sexe M)
rq_cas(evenements 04_lieu SORTIE [=[Valeur 1 (rang 0).
]=] ARGS lieu ajouter Famille --commune Lyon --code 69 --region Rhône --pays France)
rq_cas(evenements 05_qualite SORTIE [=[Valeur 1 (rang 0).
]=] ARGS qualite ajouter Famille --valeur Témoin)
rq_cas(evenements 06_parente SORTIE [=[Valeur 1 (rang 0).
]=] ARGS parente ajouter Famille --valeur Cousin)
rq_cas_action(evenements 07_lignes sqlite3 Famille.rq2/Famille.adb
  "INSERT INTO Evenements (ID, Type, LibelleChamps, Donnee, NoPersA, NoPersB, Acte, TypeCalend, \"Date\", Lieu, LieuDit, Note, _DONNEE, _DATE, RANG_A, RANG_B) VALUES (11, 0, 'NAISSANCE', 'à la maison', 2, 0, '', 'G', '03/03/1850', 1, 'La Croix-Rousse', 0, 'à la maison', 18500303, 1, 0), (12, 0, 'MARIAGE', '', 3, 2, '~', 'G', '../06/1875', 1, '', 0, '', 18750600, 1, 2), (13, 1, 'PROFESSION', 'couturière', 2, 0, '', '', '', 0, '', 0, 'couturière', 0, 3, 0), (14, 0, 'DECES', '', 2, 0, '', 'R', '01/VEND/01', 99, '', 77, '', 0, 4, 0), (15, 0, 'DECES', 'caché', -2, 0, '', 'G', '', 0, '', 0, 'caché', 0, 5, 0); INSERT INTO Sources (ID_EVEN, TYPE, DESCRIPTIF, RANG) VALUES (11, 'Acte', 'Registre paroissial', 1), (11, 'Bans', 'Mairie', 0); INSERT INTO Illustrations (ID_EVEN, CHEMIN, RANG) VALUES (11, 'Images\\acte.jpg', 0); INSERT INTO PersAssociees (ID_EVEN, LienQualite, LienParente, LienPers_No, LienPers_NivNo, Rang) VALUES (11, 1, 1, 3, '', 1), (11, 9, 0, 2, '', 1);")
# L'union est chez Louise au rang 2 (RANG_B) ; le décès républicain a un lieu et une note
# hors de leurs fichiers : lus 0. La ligne cachée (personne -2) n'apparaît pas.
rq_cas(evenements 08_json JSON SORTIE [=[{
  "champs": [
    {
      "donnee": "couturière",
      "libelle": "PROFESSION",
      "numero": 13,
      "personne_a": 2,
      "personne_b": 0,
      "rang": 1
    }
  ],
  "evenements": [
    {
      "acte": "",
      "calendrier": "G",
      "date": "03/03/1850",
      "donnee": "à la maison",
      "illustrations": [
        {
          "chemin": "Images\\acte.jpg"
        }
      ],
      "libelle": "NAISSANCE",
      "lieu": 1,
      "lieu_dit": "La Croix-Rousse",
      "lieu_texte": "Lyon, Rhône, France",
      "note": 0,
      "numero": 11,
      "personne_a": 2,
      "personne_b": 0,
      "personnes_citees": [
        {
          "numero": 3,
          "parente": "Cousin",
          "qualite": "Témoin"
        },
        {
          "numero": 2,
          "parente": "",
          "qualite": ""
        }
      ],
      "rang": 1,
      "sources": [
        {
          "descriptif": "Mairie",
          "type": "Bans"
        },
        {
          "descriptif": "Registre paroissial",
          "type": "Acte"
        }
      ]
    },
    {
      "acte": "~",
      "calendrier": "G",
      "date": "../06/1875",
      "donnee": "",
      "illustrations": [],
      "libelle": "MARIAGE",
      "lieu": 1,
      "lieu_dit": "",
      "lieu_texte": "Lyon, Rhône, France",
      "note": 0,
      "numero": 12,
      "personne_a": 3,
      "personne_b": 2,
      "personnes_citees": [],
      "rang": 2,
      "sources": []
    },
    {
      "acte": "",
      "calendrier": "R",
      "date": "01/VEND/01",
      "donnee": "",
      "illustrations": [],
      "libelle": "DECES",
      "lieu": 0,
      "lieu_dit": "",
      "lieu_texte": "",
      "note": 0,
      "numero": 14,
      "personne_a": 2,
      "personne_b": 0,
      "personnes_citees": [],
      "rang": 3,
      "sources": []
    }
  ]
}
]=] ARGS --json evenements Famille 2)
rq_cas(evenements 09_texte SORTIE [=[1<TAB>NAISSANCE<TAB>03/03/1850<TAB>Lyon, Rhône, France<TAB>La Croix-Rousse<TAB>à la maison
<TAB>source<TAB>Bans<TAB>Mairie
<TAB>source<TAB>Acte<TAB>Registre paroissial
<TAB>illustration<TAB>Images\acte.jpg
<TAB>citée<TAB>3<TAB>Témoin<TAB>Cousin
<TAB>citée<TAB>2<TAB><TAB>
2<TAB>MARIAGE<TAB>~../06/1875<TAB>Lyon, Rhône, France<TAB><TAB>
3<TAB>DECES<TAB>01/VEND/01<TAB><TAB><TAB>
1<TAB>PROFESSION<TAB>couturière
]=] ARGS evenements Famille.rq2 2)
# Chez Paul, le même mariage, au rang 1 de sa première passe.
rq_cas(evenements 10_paul MOTIF SORTIE [=[1<TAB>MARIAGE<TAB>~../06/1875.*
]=] ARGS evenements Famille 3)
# Réenregistrer tel quel : le rang du champ (3 -> 1) et la _DATE du décès (0 -> 17920922)
# sont refaits, deux lignes ; la fois suivante, rien.
rq_cas(evenements 11_reenregistrer MOTIF JSON SORTIE [=[.*"lignes_ecrites": 2
}
]=] ARGS --json evenements Famille 2 --reenregistrer)
rq_cas(evenements 12_reenregistrer_rien MOTIF SORTIE [=[.*Lignes écrites : 0
]=] ARGS evenements Famille 2 --reenregistrer)
rq_cas_action(evenements 13_verifie_date sqlite3 Famille.rq2/Famille.adb
  "SELECT CASE WHEN (SELECT _DATE FROM Evenements WHERE ID = 14) = 17920922 AND (SELECT RANG_A FROM Evenements WHERE ID = 13) = 1 AND (SELECT Lieu FROM Evenements WHERE ID = 14) = 99 THEN 1 ELSE abs(-9223372036854775808) END;")
rq_cas(evenements 14_personne_absente CODE 1 ERREUR [=[rqbase : La personne 9 n'existe pas dans ce dossier.
]=] ARGS evenements Famille 9)
rq_cas(evenements 15_personne_zero CODE 1 ERREUR [=[rqbase : La personne 0 n'existe pas dans ce dossier.
]=] ARGS evenements Famille 0)
# Un dossier en lecture seule se lit, mais --reenregistrer est refusé sans rien toucher.
rq_cas_action(evenements 16_protege chmod a-w Famille.rq2)
rq_cas(evenements 17_lecture_seule MOTIF SORTIE [=[1<TAB>NAISSANCE<TAB>03/03/1850.*]=] ARGS evenements Famille 2)
rq_cas(evenements 18_reenregistrer_refuse CODE 1 ERREUR [=[rqbase : Le dossier "Famille" est en lecture seule : rien n'a été changé.
]=] ARGS evenements Famille 2 --reenregistrer)
rq_cas_action(evenements 19_rend chmod u+w Famille.rq2)
# Paul marqué supprimé (octet 1 de son enregistrement de 644 octets) sans que ses lignes soient
# cachées : ses faits de couple se lisent avec le conjoint en négatif, et ne se réenregistrent pas.
rq_cas_action(evenements 20_supprime bash -c "printf O | dd of=Famille.rq2/Famille.prs bs=1 seek=1933 conv=notrunc status=none")
rq_cas(evenements 21_supprime_lu MOTIF JSON SORTIE [=[.*"personne_a": -2,
      "personne_b": -2,.*]=] ARGS --json evenements Famille 3)
rq_cas(evenements 22_supprime_refuse CODE 1 ERREUR [=[rqbase : La personne 3 est supprimée : ses événements ne sont pas réenregistrés.
]=] ARGS evenements Famille 3 --reenregistrer)
