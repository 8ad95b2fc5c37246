# Bout en bout de « rqbase date » : chaque verbe, en texte et en JSON, avec ses refus.
# Chaque cas lance le vrai binaire et fige son code de sortie, sa sortie standard et sa
# sortie d'erreur, au caractère près (verifie_sortie.cmake, comme les scénarios du dossier).
#
# rq_cli_date(nom code sortie erreur arguments...) : `sortie` et `erreur` sont les textes
# exacts attendus (fins de ligne comprises), écrits entre [=[ et ]=] ; ils vont dans des
# fichiers à la configuration, que la ligne de commande de ctest ne déforme pas.
function(rq_cli_date nom code sortie erreur)
  set(attendus ${CMAKE_CURRENT_BINARY_DIR}/cas_attendus/cli_date_${nom})
  file(WRITE ${attendus}.sortie "${sortie}")
  file(WRITE ${attendus}.erreur "${erreur}")
  string(JOIN "@A@" arguments ${ARGN})
  add_test(NAME cli_date_${nom}
    COMMAND ${CMAKE_COMMAND} -DPROGRAMME=$<TARGET_FILE:rqbase_cli> -DREP=${CMAKE_CURRENT_BINARY_DIR}/cas/date
      "-DARGUMENTS=${arguments}" -DCODE=${code} -DSORTIE=${attendus}.sortie -DERREUR=${attendus}.erreur
      -P ${CMAKE_CURRENT_LIST_DIR}/verifie_sortie.cmake)
endfunction()

# analyser : le texte normalisé, ou le code de refus (JSON : le code, et la sortie 1).
rq_cli_date(analyser_mois_en_lettres 0 [=[../02/1872
]=]
  [=[]=]
  date analyser "fev 1872")
rq_cli_date(analyser_accents 0 [=[../02/1872
]=]
  [=[]=]
  date analyser "Février 1872")
rq_cli_date(analyser_republicain 0 [=[10/VENT/05
]=]
  [=[]=]
  date analyser -c R "10 ventose 5")
rq_cli_date(analyser_hebreu 0 [=[15/08/5784
]=]
  [=[]=]
  date analyser --calendrier H "15 nissan 5784")
rq_cli_date(analyser_compacte_recoupee 0 [=[{
  "calendrier": "G",
  "code": -1,
  "texte": "01/12/1969"
}
]=]
  [=[]=]
  --json date analyser 1121969)
rq_cli_date(analyser_refus_json 1 [=[{
  "calendrier": "G",
  "code": 9,
  "message": "Ce jour n'existe pas dans ce mois et cette année.",
  "texte": "32/01/1900"
}
]=]
  [=[rqbase : Date refusée (code 9) : Ce jour n'existe pas dans ce mois et cette année.
]=]
  --json date analyser 32/01/1900)
rq_cli_date(analyser_annee_suivie_d_un_signe 1 [=[]=]
  [=[rqbase : Date refusée (code 8) : Le mois est hors des limites du calendrier.
]=]
  date analyser "1850?")
rq_cli_date(analyser_recoupage_sans_annee 1 [=[]=]
  [=[rqbase : Date refusée (code 7) : L'année est hors des limites du calendrier.
]=]
  date analyser "9112?")
rq_cli_date(analyser_strict 1 [=[]=]
  [=[rqbase : Date refusée (code 3) : L'année ne doit contenir que des chiffres, des points, des points d'interrogation ou un tiret.
]=]
  date analyser --strict "15 oct")
rq_cli_date(analyser_calendrier_inconnu 1 [=[]=]
  [=[rqbase : Calendrier inconnu : X (G, R, H ou A).
]=]
  date analyser -c X 1850)

# convertir : une conversion qui ne donne rien est une erreur.
rq_cli_date(convertir_republicain_gregorien 0 [=[28/02/1797
]=]
  [=[]=]
  date convertir 10/VENT/05 --vers G)
rq_cli_date(convertir_exportee_json 0 [=[{
  "calendrier": "H",
  "texte": "02/06/5660"
}
]=]
  [=[]=]
  --json date convertir "# <G01/02/1900#" --vers H)
rq_cli_date(convertir_fourchette 0 [=[05/07
]=]
  [=[]=]
  date convertir "#  G1797/1799#" --vers R)
rq_cli_date(convertir_partielle 0 [=[../11/5610
]=]
  [=[]=]
  date convertir ../06/1850 --vers H)
rq_cli_date(convertir_hors_ere 1 [=[]=]
  [=[rqbase : Conversion impossible : la date 01/01/1700 (calendrier grégorien) n'a pas d'équivalent dans le calendrier républicain.
]=]
  date convertir 01/01/1700 --vers R)
rq_cli_date(convertir_hors_ere_json 1 [=[]=]
  [=[rqbase : Conversion impossible : la date 01/01/1700 (calendrier grégorien) n'a pas d'équivalent dans le calendrier républicain.
]=]
  --json date convertir 01/01/1700 --vers R)
rq_cli_date(convertir_fourchette_ouverte 1 [=[]=]
  [=[rqbase : Conversion impossible : la date 1850/.... (calendrier grégorien) n'a pas d'équivalent dans le calendrier républicain.
]=]
  date convertir "#  G1850/....#" --vers R)
rq_cli_date(convertir_date_refusee 1 [=[]=]
  [=[rqbase : Date refusée (code 9) : Ce jour n'existe pas dans ce mois et cette année.
]=]
  date convertir 32/01/1900 --vers R)
rq_cli_date(convertir_hebreu_invalide 1 [=[]=]
  [=[rqbase : Conversion impossible : la date 30/07/5784 (calendrier hébraïque) n'a pas d'équivalent dans le calendrier grégorien.
]=]
  date convertir "#  H30/07/5784#" --vers G)
rq_cli_date(convertir_avant_jc 1 [=[]=]
  [=[rqbase : Une date avant Jésus-Christ ne se convertit dans aucun autre calendrier.
]=]
  date convertir "#  A01/01/0050#" --vers G)
rq_cli_date(convertir_vers_avant_jc 1 [=[]=]
  [=[rqbase : Conversion vers A impossible : choisissez G, R ou H.
]=]
  date convertir 15/06/1850 --vers A)

# info : la description complète, en texte et en JSON.
rq_cli_date(info_json 0 [=[{
  "acte": "ca",
  "annee": 1850,
  "annee_decimale": null,
  "calendrier": "G",
  "exporte": "#caG15/06/1850#",
  "gregorien": "15/06/1850",
  "intervalle": {
    "max": 1851.4576416015625,
    "max_ouvert": false,
    "min": 1849.4576416015625,
    "min_ouvert": false
  },
  "jour_julien": 2396923,
  "jour_semaine": {
    "abrege": "Sam",
    "complet": "Samedi",
    "numero": 6
  },
  "jours_absolus": 675120,
  "precise": true,
  "saison": {
    "code": 0,
    "texte": "Au cours des derniers jours du printemps"
  },
  "texte": "15/06/1850",
  "vide": false,
  "zodiaque": {
    "indice": 2,
    "nom": "Gémeaux"
  }
}
]=]
  [=[]=]
  --json date info "#caG15/06/1850#")
rq_cli_date(info_texte 0 [=[Texte : 10/VENT/05
Calendrier : R
Acte : 
Exportée : #  R10/VENT/05#
Grégorien : 28/02/1797
Vide : false
Précise : true
Jour de la semaine : Mardi
Zodiaque : Poissons
Saison : Durant le troisième mois de l'hiver
Jour julien : 2377459
Jours depuis le 01/01/0001 : 655656
Année : 1797
Année décimale : 1797.158935546875
Intervalle : {"max":1797.1600341796875,"max_ouvert":false,"min":1797.1600341796875,"min_ouvert":false}
]=]
  [=[]=]
  date info 10/VENT/05)
rq_cli_date(info_fourchette_json 0 [=[{
  "acte": "",
  "annee": 1855,
  "annee_decimale": null,
  "calendrier": "G",
  "exporte": "#  G1850/1860#",
  "gregorien": "1850/1860",
  "intervalle": {
    "max": 1860.989990234375,
    "max_ouvert": false,
    "min": 1850.0,
    "min_ouvert": false
  },
  "jour_julien": null,
  "jour_semaine": {
    "abrege": "",
    "complet": "",
    "numero": null
  },
  "jours_absolus": null,
  "precise": false,
  "saison": {
    "code": -1,
    "texte": "Saison inconnue"
  },
  "texte": "1850/1860",
  "vide": false,
  "zodiaque": {
    "indice": -1,
    "nom": null
  }
}
]=]
  [=[]=]
  --json date info "#  G1850/1860#")
rq_cli_date(info_refus 1 [=[]=]
  [=[rqbase : Date refusée (code 2) : Le mois est inconnu.
]=]
  date info xyz)

# ecart : jours, années, mois et âge ; un écart incalculable est une erreur, en JSON aussi.
rq_cli_date(ecart_json 0 [=[{
  "age": 1.0,
  "annees": 1,
  "inverse": false,
  "jours": 365,
  "mois": 0
}
]=]
  [=[]=]
  --json date ecart 01/01/1900 01/01/1901)
rq_cli_date(ecart_29_fevrier 0 [=[366 jours, 1 an et 0 mois, âge 1.000
]=]
  [=[]=]
  date ecart 29/02/1904 01/03/1905)
rq_cli_date(ecart_inverse 0 [=[365 jours, 1 an et 0 mois, âge 1.000 (dates inversées)
]=]
  [=[]=]
  date ecart 01/01/1901 01/01/1900)
rq_cli_date(ecart_reforme 0 [=[1 jour, 0 an et 0 mois, âge 0.008
]=]
  [=[]=]
  date ecart 09/12/1582 20/12/1582)
rq_cli_date(ecart_approche 0 [=[{
  "age": 10.178082466125488,
  "annees": 10,
  "inverse": false,
  "jours": 3715,
  "mois": 2
}
]=]
  [=[]=]
  --json date ecart --approx 15/01/1900 20/03/1910)
rq_cli_date(ecart_incalculable 1 [=[]=]
  [=[rqbase : Écart incalculable entre ces deux dates.
]=]
  date ecart "#  G../../....#" 01/01/1900)
rq_cli_date(ecart_incalculable_json 1 [=[]=]
  [=[rqbase : Écart incalculable entre ces deux dates.
]=]
  --json date ecart "#  G../../....#" 01/01/1900)

# comparer : -1, 0 ou 1.
rq_cli_date(comparer_fourchettes_json 0 [=[{
  "resultat": -1
}
]=]
  [=[]=]
  --json date comparer "#  G1850/1860#" "#  G1860/1870#")
rq_cli_date(comparer_defaut 0 [=[1
]=]
  [=[]=]
  date comparer "#  G..../....#" 15/06/1850 --defaut 1)
rq_cli_date(comparer_calendriers 0 [=[0
]=]
  [=[]=]
  date comparer 10/VENT/05 28/02/1797)
rq_cli_date(comparer_avant_jc 0 [=[-1
]=]
  [=[]=]
  date comparer "#  A01/01/0010#" 01/01/0001)
rq_cli_date(comparer_refus 1 [=[]=]
  [=[rqbase : Date refusée (code 2) : Le mois est inconnu.
]=]
  date comparer xyz 1850)

# decaler : un décalage sans année est une erreur ; N doit être un entier (sortie 2).
rq_cli_date(decaler_json 0 [=[{
  "texte": "../../1851"
}
]=]
  [=[]=]
  --json date decaler 15/06/1850 400)
rq_cli_date(decaler_en_arriere 0 [=[05/06/1850
]=]
  [=[]=]
  date decaler 15/06/1850 -10)
rq_cli_date(decaler_sans_annee 1 [=[]=]
  [=[rqbase : Cette date n'a pas d'année : rien à décaler.
]=]
  date decaler "#  G../../....#" 10)
rq_cli_date(decaler_nombre_invalide 2 [=[]=]
  [=[rqbase : valeur invalide : N = dix
rqbase --aide pour l'aide.
]=]
  date decaler 15/06/1850 dix)

# paques : de 1583 à 2499 seulement.
rq_cli_date(paques_json 0 [=[{
  "jour": 31,
  "mois": 3,
  "texte": "31/03/2024"
}
]=]
  [=[]=]
  --json date paques 2024)
rq_cli_date(paques_18_avril 0 [=[18/04/1981
]=]
  [=[]=]
  date paques 1981)
rq_cli_date(paques_avant_1583 1 [=[]=]
  [=[rqbase : Pâques ne se calcule que pour les années 1583 à 2499 (année demandée : 1500).
]=]
  date paques 1500)
rq_cli_date(paques_apres_2499_json 1 [=[]=]
  [=[rqbase : Pâques ne se calcule que pour les années 1583 à 2499 (année demandée : 2500).
]=]
  --json date paques 2500)

# La commande date sans verbe.
rq_cli_date(sans_verbe 2 [=[]=]
  [=[rqbase : il manque la commande (voir --aide)
rqbase --aide pour l'aide.
]=]
  date)
