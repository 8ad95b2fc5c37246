# Bout en bout des commandes du dossier : chaque cas lance le vrai binaire dans le dossier de
# travail de son scénario et fige son code de sortie, sa sortie standard et sa sortie d'erreur
# au caractère près (verifie_sortie.cmake), y compris les refus (code 1) et les lignes de
# commande incorrectes (code 2).
#
# Un scénario est une suite de pas qui partagent un dossier de travail à lui
# (<build>/tests/cli/cas/<scénario>) : chaque pas est l'installation (FIXTURES_SETUP) dont le
# suivant a besoin (FIXTURES_REQUIRED). Les pas d'un scénario passent donc dans l'ordre, même
# choisis seuls par -R, et les scénarios passent en parallèle (ctest -j) sans se toucher. Le
# premier pas part d'un dossier de travail vide.
#
# rq_cas(scenario etape [CODE c] [SORTIE texte] [ERREUR texte] [ENTREE texte] [JSON]
#        [JSON_LONGUEUR n] [MOTIF] ARGS arguments...)
#   CODE vaut 0 par défaut ; SORTIE et ERREUR sont vides par défaut. Dans les textes et les
#   arguments, <TAB> tient lieu de tabulation ; dans les textes, <REP> est le dossier de
#   travail, <HORODATE> une date-heure, <ID> l'identifiant d'un dossier neuf.
# rq_cas_action(scenario etape commande...) : un pas qui prépare le terrain (chmod, fichier
#   posé par l'utilisateur...), lancé dans le dossier de travail.
set(RQ_CAS_REP ${CMAKE_CURRENT_BINARY_DIR}/cas)
set(RQ_CAS_ATTENDUS ${CMAKE_CURRENT_BINARY_DIR}/cas_attendus)
set(RQ_CAS_VERIFIE ${CMAKE_CURRENT_LIST_DIR}/verifie_sortie.cmake)

# Range le pas `nom` derrière le dernier pas du scénario. Le journal et les préférences
# restent hors du dossier de travail.
function(rq_cas_enchaine scenario nom)
  get_property(precedent GLOBAL PROPERTY rq_cas_dernier_${scenario})
  if(precedent)
    set_tests_properties(${nom} PROPERTIES FIXTURES_REQUIRED ${precedent})
  endif()
  set(env ${RQ_CAS_REP}/_environnement/${scenario})
  set_tests_properties(${nom} PROPERTIES FIXTURES_SETUP ${nom}
    ENVIRONMENT "XDG_DATA_HOME=${env}/donnees;XDG_CONFIG_HOME=${env}/config;RQBASE_PREFERENCES=${env}/preferences.ini;RQBASE_ATTENTE_VERROU=3000")
  set_property(GLOBAL PROPERTY rq_cas_dernier_${scenario} ${nom})
endfunction()

function(rq_cas scenario etape)
  cmake_parse_arguments(PARSE_ARGV 2 cas "JSON;MOTIF" "CODE;SORTIE;ERREUR;ENTREE;JSON_LONGUEUR" "ARGS")
  set(nom cli_${scenario}_${etape})
  if(NOT DEFINED cas_CODE)
    set(cas_CODE 0)
  endif()
  foreach(texte SORTIE ERREUR)
    string(REPLACE "<TAB>" "\t" cas_${texte} "${cas_${texte}}")
  endforeach()
  file(WRITE ${RQ_CAS_ATTENDUS}/${nom}.sortie "${cas_SORTIE}")
  file(WRITE ${RQ_CAS_ATTENDUS}/${nom}.erreur "${cas_ERREUR}")
  set(options "")
  if(DEFINED cas_ENTREE)
    string(REPLACE "<TAB>" "\t" cas_ENTREE "${cas_ENTREE}")
    file(WRITE ${RQ_CAS_ATTENDUS}/${nom}.entree "${cas_ENTREE}")
    list(APPEND options -DENTREE=${RQ_CAS_ATTENDUS}/${nom}.entree)
  endif()
  if(cas_JSON)
    list(APPEND options -DJSON=1)
  endif()
  if(DEFINED cas_JSON_LONGUEUR)
    list(APPEND options -DJSON_LONGUEUR=${cas_JSON_LONGUEUR})
  endif()
  if(cas_MOTIF)
    list(APPEND options -DMOTIF=1)
  endif()
  # Le premier pas d'un scénario part d'un dossier de travail vide.
  get_property(precedent GLOBAL PROPERTY rq_cas_dernier_${scenario})
  if(NOT precedent)
    list(APPEND options -DVIDER=1)
  endif()
  string(REPLACE "<TAB>" "\t" arguments "${cas_ARGS}")
  string(JOIN "@A@" arguments ${arguments})
  add_test(NAME ${nom}
    COMMAND ${CMAKE_COMMAND} -DPROGRAMME=$<TARGET_FILE:rqbase_cli> -DREP=${RQ_CAS_REP}/${scenario}
      "-DARGUMENTS=${arguments}" -DCODE=${cas_CODE} -DSORTIE=${RQ_CAS_ATTENDUS}/${nom}.sortie
      -DERREUR=${RQ_CAS_ATTENDUS}/${nom}.erreur ${options} -P ${RQ_CAS_VERIFIE})
  rq_cas_enchaine(${scenario} ${nom})
endfunction()

function(rq_cas_action scenario etape)
  set(nom cli_${scenario}_${etape})
  add_test(NAME ${nom} COMMAND ${ARGN} WORKING_DIRECTORY ${RQ_CAS_REP}/${scenario})
  rq_cas_enchaine(${scenario} ${nom})
endfunction()

# --- Création et description ------------------------------------------------------------

rq_cas(dossier_creation 01_creer SORTIE [=[Dossier créé : Famille.rq2
]=] ARGS creer Famille --titre "Famille Lefèvre" --premiere-personne)
rq_cas(dossier_creation 02_info_json JSON SORTIE [=[{
  "creation": "<HORODATE>",
  "de_cujus": 1,
  "fichiers": [
    "Famille.adb",
    "Famille.dch",
    "Famille.exp",
    "Famille.lie",
    "Famille.not",
    "Famille.par",
    "Famille.prs",
    "Famille.psu",
    "Famille.qua",
    "Famille.xin",
    "Notices",
    "lienidpers.cpt"
  ],
  "lecture_seule": false,
  "modification": "<HORODATE>",
  "numeros": 1,
  "personnes": 1,
  "personnes_supprimees": 0,
  "signets": [
    -1,
    1
  ],
  "titre": "Famille Lefèvre",
  "version": 2020
}
]=] ARGS --json info Famille)
rq_cas(dossier_creation 03_info_texte SORTIE [=[Dossier        : <REP>/Famille.rq2/Famille
Version        : 2020
Titre          : Famille Lefèvre
Personnes      : 1 (1 numéros, 0 supprimées)
De cujus       : 1
Signets        : -1, 1
Création       : <HORODATE>
Modification   : <HORODATE>
Lecture seule  : non
Fichiers       : Famille.adb Famille.dch Famille.exp Famille.lie Famille.not Famille.par Famille.prs Famille.psu Famille.qua Famille.xin Notices lienidpers.cpt
]=] ARGS info Famille.rq2)
rq_cas(dossier_creation 04_premiere_personne SORTIE [=[1<TAB>?<TAB>X<TAB>
]=] ARGS personnes Famille)
# Sur un dossier qui existe : la question est posée (sans terminal, Annuler), rien ne change.
rq_cas(dossier_creation 05_existe_sans_reponse CODE 1 ERREUR [=[Création d'un dossier généalogique
La généalogie "Famille" existe déjà !
Elle contient 1 personnes. Si vous souhaitez réellement supprimer ce dossier, veuillez le supprimer par la palette Outils, puis créer un nouveau dossier.

Voulez-vous choisir un autre nom pour le nouveau dossier ?
(pas de terminal : réponse Annuler ; --oui ou --non pour répondre)
rqbase : Le dossier "Famille.rq2" existe déjà : rien n'a été changé.
]=] ARGS creer Famille)
rq_cas(dossier_creation 06_existe_non CODE 1 ERREUR [=[rqbase : Le dossier "Famille.rq2" existe déjà : rien n'a été changé.
]=] ARGS --non creer Famille.rq2 --premiere-personne)
rq_cas(dossier_creation 07_existe_oui CODE 1 ERREUR [=[rqbase : Le dossier "Famille.rq2" existe déjà : rien n'a été changé.
]=] ARGS creer Famille --oui --titre Autre)
rq_cas(dossier_creation 08_titre_garde JSON SORTIE [=[{"debut": 1, "numeros": 1, "personnes": [
  {"nom":"X","numero":1,"prenoms":"","sexe":"?","supprime":false}
]}
]=] ARGS --json personnes Famille)
rq_cas(dossier_creation 09_vide_json JSON SORTIE [=[{
  "dossier": "Vide.rq2",
  "identifiant": "<ID>"
}
]=] ARGS --json creer Vide)
# Sans --premiere-personne, la personne 1 existe sans nom.
rq_cas(dossier_creation 10_vide_sans_nom JSON SORTIE [=[{"debut": 1, "numeros": 1, "personnes": [
  {"nom":"","numero":1,"prenoms":"","sexe":"?","supprime":false}
]}
]=] ARGS personnes Vide --json)
rq_cas(dossier_creation 11_titre_trop_long CODE 1 ERREUR [=[rqbase : Le titre dépasse 100 caractères : rien n'a été créé.
]=] ARGS creer Long --titre
  "Famille Lefèvre de la Roche-Guyon, de Beaumont-sur-Oise, de Chaumont-en-Vexin et de Gisors, en Normandie")
rq_cas(dossier_creation 12_titre_tabulation CODE 1 ERREUR [=[rqbase : Le titre contient un caractère de contrôle (U+0009) : rien n'a été enregistré.
]=] ARGS creer Long --titre "Famille<TAB>Lefèvre")
rq_cas(dossier_creation 13_rien_cree CODE 1 ERREUR [=[rqbase : Le dossier "Long" est introuvable.
]=] ARGS info Long)
rq_cas(dossier_creation 14_sans_chemin CODE 2 ERREUR [=[rqbase : argument ou option obligatoire manquant : CHEMIN
rqbase --aide pour l'aide.
]=] ARGS creer)
rq_cas(dossier_creation 15_introuvable CODE 1 ERREUR [=[rqbase : Le dossier "Absent" est introuvable.
]=] ARGS --json info Absent)

# --- Personnes : ajout, liste, fiche ----------------------------------------------------------

rq_cas(dossier_personnes 01_creer SORTIE [=[Dossier créé : Famille.rq2
]=] ARGS creer Famille --premiere-personne)
rq_cas(dossier_personnes 02_ajouter SORTIE [=[Personne 2 ajoutée.
]=] ARGS ajouter-personne Famille --nom Lefèvre --prenoms "Jean Baptiste" --sexe M)
rq_cas(dossier_personnes 03_ajouter_json JSON SORTIE [=[{
  "numero": 3
}
]=] ARGS --json ajouter-personne Famille --nom Martin --prenoms Louise --sexe F)
# Par le fichier des personnes, sans sexe (inconnu par défaut).
rq_cas(dossier_personnes 04_ajouter_par_prs SORTIE [=[Personne 4 ajoutée.
]=] ARGS ajouter-personne Famille.rq2/Famille.prs --nom "Œuvre-Dubœuf" --prenoms "Zoé Anaïs")
rq_cas(dossier_personnes 05_liste SORTIE [=[1<TAB>?<TAB>X<TAB>
2<TAB>M<TAB>Lefèvre<TAB>Jean Baptiste
3<TAB>F<TAB>Martin<TAB>Louise
4<TAB>?<TAB>Œuvre-Dubœuf<TAB>Zoé Anaïs
]=] ARGS personnes Famille)
rq_cas(dossier_personnes 06_liste_json JSON SORTIE [=[{"debut": 1, "numeros": 4, "personnes": [
  {"nom":"X","numero":1,"prenoms":"","sexe":"?","supprime":false},
  {"nom":"Lefèvre","numero":2,"prenoms":"Jean Baptiste","sexe":"M","supprime":false},
  {"nom":"Martin","numero":3,"prenoms":"Louise","sexe":"F","supprime":false},
  {"nom":"Œuvre-Dubœuf","numero":4,"prenoms":"Zoé Anaïs","sexe":"?","supprime":false}
]}
]=] ARGS --json personnes Famille)
rq_cas(dossier_personnes 07_page_json JSON SORTIE [=[{"debut": 2, "numeros": 4, "personnes": [
  {"nom":"Lefèvre","numero":2,"prenoms":"Jean Baptiste","sexe":"M","supprime":false},
  {"nom":"Martin","numero":3,"prenoms":"Louise","sexe":"F","supprime":false}
]}
]=] ARGS personnes Famille --debut 2 --nombre 2 --json)
rq_cas(dossier_personnes 08_page_texte SORTIE [=[4<TAB>?<TAB>Œuvre-Dubœuf<TAB>Zoé Anaïs
]=] ARGS personnes Famille --debut 4 --nombre 10)
rq_cas(dossier_personnes 09_page_au_dela JSON SORTIE [=[{"debut": 9, "numeros": 4, "personnes": []}
]=] ARGS --json personnes Famille --debut 9)
rq_cas(dossier_personnes 10_fiche SORTIE [=[Numéro      : 2
Type        : P
Nom         : Lefèvre
Prénoms     : Jean Baptiste (usuel : 0)
Sexe        : M
Père, mère  : 0, 0
Conjoints   : -
Enfants     : -
Note        : 0
Débordement : 0
]=] ARGS personne Famille 2)
rq_cas(dossier_personnes 11_fiche_json JSON SORTIE [=[{
  "champs": [],
  "conjoints": [],
  "enfants": [],
  "evenements": [],
  "extension": 0,
  "mere": 0,
  "nom": "Œuvre-Dubœuf",
  "note": 0,
  "numero": 4,
  "pere": 0,
  "prenom_usuel": 0,
  "prenoms": "Zoé Anaïs",
  "sexe": "?",
  "supprime": false,
  "type": "P"
}
]=] ARGS personne Famille 4 --json)
rq_cas(dossier_personnes 12_fiche_au_dela CODE 1 ERREUR [=[rqbase : La personne 5 n'existe pas dans ce dossier.
]=] ARGS personne Famille 5)
rq_cas(dossier_personnes 13_fiche_zero CODE 1 ERREUR [=[rqbase : La personne 0 n'existe pas dans ce dossier.
]=] ARGS --json personne Famille 0)
rq_cas(dossier_personnes 14_fiche_numero_illisible CODE 2 ERREUR [=[rqbase : valeur invalide : N = deux
rqbase --aide pour l'aide.
]=] ARGS personne Famille deux)
rq_cas(dossier_personnes 15_debut_illisible CODE 2 ERREUR [=[rqbase : valeur invalide : --debut = x
rqbase --aide pour l'aide.
]=] ARGS personnes Famille --debut x)
rq_cas(dossier_personnes 16_option_inconnue CODE 2 ERREUR [=[rqbase : argument inattendu : --inconnue
rqbase --aide pour l'aide.
]=] ARGS personnes Famille --inconnue)
rq_cas(dossier_personnes 17_sans_dossier CODE 2 ERREUR [=[rqbase : argument ou option obligatoire manquant : DOSSIER
rqbase --aide pour l'aide.
]=] ARGS ajouter-personne --nom Martin)
# Refus de l'ajout : tout se vérifie avant d'ouvrir le dossier.
rq_cas(dossier_personnes 18_sexe_refuse CODE 1 ERREUR [=[rqbase : Le sexe doit être M, F ou ?.
]=] ARGS ajouter-personne Famille --nom Martin --sexe H)
rq_cas(dossier_personnes 19_nom_tabulation CODE 1 ERREUR [=[rqbase : Le nom contient un caractère de contrôle (U+0009) : rien n'a été enregistré.
]=] ARGS ajouter-personne Famille --nom "Martin<TAB>Durand")
rq_cas(dossier_personnes 20_nom_hors_codage CODE 1 ERREUR [=[rqbase : Le caractère U+1F600 (dans le nom) n'existe pas dans le codage des dossiers (Windows-1252) : rien n'a été enregistré.
]=] ARGS ajouter-personne Famille --nom "Martin 😀")
rq_cas(dossier_personnes 21_prenoms_hors_codage CODE 1 ERREUR [=[rqbase : Le caractère U+0141 (dans les prénoms) n'existe pas dans le codage des dossiers (Windows-1252) : rien n'a été enregistré.
]=] ARGS --json ajouter-personne Famille --nom Kowalska --prenoms Łucja)
rq_cas(dossier_personnes 22_nom_trop_long CODE 1 ERREUR [=[rqbase : Le nom dépasse 100 caractères : rien n'a été enregistré.
]=] ARGS ajouter-personne Famille --nom
  "Lefèvre de la Roche-Guyon de Beaumont-sur-Oise de Chaumont-en-Vexin de Gisors et de Magny-en-Vexin en Normandie")
rq_cas(dossier_personnes 23_prenoms_trop_longs CODE 1 ERREUR [=[rqbase : Les prénoms dépassent 70 caractères : rien n'a été enregistré.
]=] ARGS ajouter-personne Famille --nom Martin
  --prenoms "Jean Baptiste Marie Joseph Louis Antoine François Xavier Pierre Paul Hyacinthe")
rq_cas(dossier_personnes 24_dossier_introuvable CODE 1 ERREUR [=[rqbase : Le dossier "Absent" est introuvable.
]=] ARGS ajouter-personne Absent --nom Martin)
rq_cas(dossier_personnes 25_refus_sans_trace SORTIE [=[1<TAB>?<TAB>X<TAB>
2<TAB>M<TAB>Lefèvre<TAB>Jean Baptiste
3<TAB>F<TAB>Martin<TAB>Louise
4<TAB>?<TAB>Œuvre-Dubœuf<TAB>Zoé Anaïs
]=] ARGS personnes Famille)

# --- Dossier en lecture seule -----------------------------------------------------------------
# Le dossier se dit en lecture seule d'après les droits du fichier, même pour le
# super-utilisateur que les droits n'arrêtent pas.

rq_cas(dossier_lecture_seule 01_creer SORTIE [=[Dossier créé : Famille.rq2
]=] ARGS creer Famille --premiere-personne)
rq_cas_action(dossier_lecture_seule 02_retire_ecriture chmod a-w Famille.rq2/Famille.prs)
rq_cas(dossier_lecture_seule 03_ajout_refuse CODE 1 ERREUR [=[rqbase : Le dossier "Famille" est en lecture seule : rien n'a été changé.
]=] ARGS ajouter-personne Famille --nom Martin)
rq_cas(dossier_lecture_seule 04_renommage_refuse CODE 1 ERREUR [=[rqbase : Le dossier "Famille" est en lecture seule : rien n'a été changé.
]=] ARGS renommer Famille Autre)
rq_cas(dossier_lecture_seule 05_suppression_refusee CODE 1 ERREUR [=[rqbase : Le dossier "Famille" est en lecture seule : rien n'a été changé.
]=] ARGS --oui supprimer Famille)
rq_cas(dossier_lecture_seule 06_lu_quand_meme SORTIE [=[Dossier        : <REP>/Famille.rq2/Famille
Version        : 2020
Titre          : 
Personnes      : 1 (1 numéros, 0 supprimées)
De cujus       : 1
Signets        : -1, 1
Création       : <HORODATE>
Modification   : <HORODATE>
Lecture seule  : oui
Fichiers       : Famille.adb Famille.dch Famille.exp Famille.lie Famille.not Famille.par Famille.prs Famille.psu Famille.qua Famille.xin Notices lienidpers.cpt
]=] ARGS info Famille)
rq_cas_action(dossier_lecture_seule 07_rend_ecriture chmod u+w Famille.rq2/Famille.prs)

# --- Copie et renommage ---------------------------------------------------------------------

rq_cas(dossier_copie 01_creer SORTIE [=[Dossier créé : Famille.rq2
]=] ARGS creer Famille --premiere-personne --titre "Famille Lefèvre")
rq_cas(dossier_copie 02_ajouter SORTIE [=[Personne 2 ajoutée.
]=] ARGS ajouter-personne Famille --nom Lefèvre --prenoms "Jean Baptiste" --sexe M)
rq_cas(dossier_copie 03_copier SORTIE [=[Dossier copié : Copie.rq2
]=] ARGS copier Famille Copie)
rq_cas(dossier_copie 04_copie_complete SORTIE [=[Dossier        : <REP>/Copie.rq2/Copie
Version        : 2020
Titre          : Famille Lefèvre
Personnes      : 2 (2 numéros, 0 supprimées)
De cujus       : 1
Signets        : -1, 1
Création       : <HORODATE>
Modification   : <HORODATE>
Lecture seule  : non
Fichiers       : Copie.adb Copie.dch Copie.exp Copie.lie Copie.not Copie.par Copie.prs Copie.psu Copie.qua Notices
]=] ARGS info Copie)
rq_cas(dossier_copie 05_copie_lisible JSON SORTIE [=[{"debut": 1, "numeros": 2, "personnes": [
  {"nom":"X","numero":1,"prenoms":"","sexe":"?","supprime":false},
  {"nom":"Lefèvre","numero":2,"prenoms":"Jean Baptiste","sexe":"M","supprime":false}
]}
]=] ARGS --json personnes Copie.rq2/Copie.prs)
rq_cas(dossier_copie 06_cible_existe CODE 1 ERREUR [=[rqbase : Le dossier "Copie.rq2" existe déjà.
]=] ARGS copier Famille Copie)
rq_cas(dossier_copie 07_cible_existe_rq2 CODE 1 ERREUR [=[rqbase : Le dossier "Copie.rq2" existe déjà.
]=] ARGS --json copier Famille Copie.rq2)
rq_cas(dossier_copie 08_source_introuvable CODE 1 ERREUR [=[rqbase : Le dossier "Absent" est introuvable.
]=] ARGS copier Absent Autre)
rq_cas(dossier_copie 09_copier_json JSON SORTIE [=[{
  "dossier": "Seconde.rq2"
}
]=] ARGS --json copier Famille Seconde.rq2)
rq_cas(dossier_copie 10_sans_cible CODE 2 ERREUR [=[rqbase : argument ou option obligatoire manquant : CIBLE
rqbase --aide pour l'aide.
]=] ARGS copier Famille)
rq_cas(dossier_copie 11_renommer_sur_existant CODE 1 ERREUR [=[rqbase : Le dossier "<REP>/Copie.rq2" existe déjà : rien n'a changé.
]=] ARGS renommer Famille Copie)
rq_cas(dossier_copie 12_renommer_chemin CODE 1 ERREUR [=[rqbase : Nouveau nom invalide : rien n'a changé.
]=] ARGS renommer Famille sous/Famille)
rq_cas(dossier_copie 13_renommer_cache CODE 1 ERREUR [=[rqbase : Nouveau nom invalide : rien n'a changé.
]=] ARGS renommer Famille .Famille)
rq_cas(dossier_copie 14_renommer_hors_codage CODE 1 ERREUR [=[rqbase : Le caractère U+1F600 (dans le nouveau nom) n'existe pas dans le codage des dossiers (Windows-1252) : rien n'a été enregistré.
]=] ARGS renommer Famille "Famille 😀")
rq_cas(dossier_copie 15_renommer_tabulation CODE 1 ERREUR [=[rqbase : Le nouveau nom contient un caractère de contrôle (U+0009) : rien n'a été enregistré.
]=] ARGS renommer Famille "Famille<TAB>Lefèvre")
rq_cas(dossier_copie 16_renommer_pas_un_dossier CODE 1 ERREUR [=[rqbase : "Absent" n'est pas un dossier généalogique (un dossier <nom>.rq2 qui tient <nom>.prs) : rien n'a été changé.
]=] ARGS renommer Absent Autre)
rq_cas(dossier_copie 17_renommer SORTIE [=[Dossier renommé : <REP>/Généalogie Lefèvre.rq2
]=] ARGS renommer Famille "Généalogie Lefèvre")
rq_cas(dossier_copie 18_ancien_nom_parti CODE 1 ERREUR [=[rqbase : Le dossier "Famille" est introuvable.
]=] ARGS info Famille)
rq_cas(dossier_copie 19_nouveau_nom_complet JSON SORTIE [=[{
  "creation": "<HORODATE>",
  "de_cujus": 1,
  "fichiers": [
    "Généalogie Lefèvre.adb",
    "Généalogie Lefèvre.dch",
    "Généalogie Lefèvre.exp",
    "Généalogie Lefèvre.lie",
    "Généalogie Lefèvre.not",
    "Généalogie Lefèvre.par",
    "Généalogie Lefèvre.prs",
    "Généalogie Lefèvre.psu",
    "Généalogie Lefèvre.qua",
    "Généalogie Lefèvre.xin",
    "Notices",
    "lienidpers.cpt"
  ],
  "lecture_seule": false,
  "modification": "<HORODATE>",
  "numeros": 2,
  "personnes": 2,
  "personnes_supprimees": 0,
  "signets": [
    -1,
    1
  ],
  "titre": "Famille Lefèvre",
  "version": 2020
}
]=] ARGS --json info "Généalogie Lefèvre")
rq_cas(dossier_copie 20_renommer_json JSON SORTIE [=[{
  "dossier": "<REP>/Famille.rq2"
}
]=] ARGS --json renommer "Généalogie Lefèvre.rq2" Famille)
rq_cas(dossier_copie 21_personnes_intactes SORTIE [=[1<TAB>?<TAB>X<TAB>
2<TAB>M<TAB>Lefèvre<TAB>Jean Baptiste
]=] ARGS personnes Famille)

# --- Suppression ----------------------------------------------------------------------------

rq_cas(dossier_suppression 01_creer SORTIE [=[Dossier créé : Famille.rq2
]=] ARGS creer Famille --premiere-personne)
rq_cas(dossier_suppression 02_copier SORTIE [=[Dossier copié : Copie.rq2
]=] ARGS copier Famille Copie)
rq_cas(dossier_suppression 03_sans_reponse CODE 1 ERREUR [=[Suppression d'un dossier
Supprimer définitivement le dossier "<REP>/Copie.rq2" ?
(pas de terminal : réponse Annuler ; --oui ou --non pour répondre)
rqbase : Suppression abandonnée : rien n'a été changé.
]=] ARGS supprimer Copie)
rq_cas(dossier_suppression 04_non CODE 1 ERREUR [=[rqbase : Suppression abandonnée : rien n'a été changé.
]=] ARGS --non supprimer Copie)
rq_cas(dossier_suppression 05_toujours_la SORTIE [=[1<TAB>?<TAB>X<TAB>
]=] ARGS personnes Copie)
rq_cas(dossier_suppression 06_oui SORTIE [=[Dossier supprimé : <REP>/Copie.rq2
]=] ARGS --oui supprimer Copie)
rq_cas(dossier_suppression 07_parti CODE 1 ERREUR [=[rqbase : Le dossier "Copie" est introuvable.
]=] ARGS info Copie)
# Un dossier qui n'est pas un dossier généalogique, et un .prs nu : refusés, rien ne part.
rq_cas_action(dossier_suppression 08_pose_autre ${CMAKE_COMMAND} -E make_directory autre)
rq_cas_action(dossier_suppression 09_pose_export ${CMAKE_COMMAND} -E touch autre/export.prs X.prs)
rq_cas(dossier_suppression 10_fichier_dans_autre CODE 1 ERREUR [=[rqbase : "autre/export.prs" n'est pas un dossier généalogique (un dossier <nom>.rq2 qui tient <nom>.prs) : rien n'a été changé.
]=] ARGS --oui supprimer autre/export.prs)
rq_cas(dossier_suppression 11_autre CODE 1 ERREUR [=[rqbase : "autre" n'est pas un dossier généalogique (un dossier <nom>.rq2 qui tient <nom>.prs) : rien n'a été changé.
]=] ARGS --oui supprimer autre)
rq_cas(dossier_suppression 12_prs_nu CODE 1 ERREUR [=[rqbase : "X.prs" n'est pas un dossier généalogique (un dossier <nom>.rq2 qui tient <nom>.prs) : rien n'a été changé.
]=] ARGS --json --oui supprimer X.prs)
rq_cas_action(dossier_suppression 13_survivants ${CMAKE_COMMAND} -E cat autre/export.prs X.prs)
# Ce que l'utilisateur a posé dans le dossier reste, et se dit.
rq_cas_action(dossier_suppression 14_pose_note ${CMAKE_COMMAND} -E touch Famille.rq2/notes_perso.txt)
rq_cas(dossier_suppression 15_json_laisse JSON SORTIE [=[{
  "supprime": "<REP>/Famille.rq2"
}
]=] ERREUR [=[Laissé en place (n'appartient pas au dossier) : notes_perso.txt
]=] ARGS --json --oui supprimer Famille)
rq_cas_action(dossier_suppression 16_note_gardee ${CMAKE_COMMAND} -E cat Famille.rq2/notes_perso.txt)
rq_cas(dossier_suppression 17_dossier_parti CODE 1 ERREUR [=[rqbase : Le dossier "Famille" est introuvable.
]=] ARGS info Famille)
rq_cas(dossier_suppression 18_sans_dossier CODE 2 ERREUR [=[rqbase : argument ou option obligatoire manquant : DOSSIER
rqbase --aide pour l'aide.
]=] ARGS --oui supprimer)
