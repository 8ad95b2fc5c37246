# Lance rqbase dans le dossier de travail d'un scénario et compare exactement son code de
# sortie, sa sortie standard et sa sortie d'erreur aux attendus. Appelé par ctest :
#   cmake -DPROGRAMME=... -DREP=... -DARGUMENTS=... -DCODE=... -DSORTIE=<fichier>
#         -DERREUR=<fichier> [-DENTREE=<fichier>] [-DVIDER=1] [-DJSON=1] [-DJSON_LONGUEUR=n]
#         [-DMOTIF=1] -P verifie_sortie.cmake
#
# ARGUMENTS sépare les arguments par "@A@". SORTIE et ERREUR sont des fichiers qui tiennent
# le texte attendu, écrits à la configuration : aucun caractère n'y est déformé par la ligne de
# commande de ctest. Avant la comparaison, ce qui change d'une exécution à l'autre est remplacé
# dans la sortie réelle : le chemin du dossier de travail par <REP>, une date-heure
# jj/mm/aaaa hh:nn:ss par <HORODATE>, l'identifiant d'un dossier neuf par <ID>.
# VIDER=1 part d'un dossier de travail vide (premier pas d'un scénario) ; JSON=1 exige en plus
# que la sortie standard soit un document JSON valide, JSON_LONGUEUR=n qu'il ait n éléments ;
# MOTIF=1 lit la sortie attendue comme une expression régulière (une longue liste dont on
# fige le début, le compte étant vérifié par JSON_LONGUEUR). L'entrée standard est ENTREE, sinon
# /dev/null : sans terminal, une question reçoit toujours la même réponse.
foreach(variable PROGRAMME REP ARGUMENTS CODE SORTIE ERREUR)
  if(NOT DEFINED ${variable})
    message(FATAL_ERROR "verifie_sortie.cmake : ${variable} manque")
  endif()
endforeach()

if(VIDER)
  file(REMOVE_RECURSE "${REP}")
endif()
file(MAKE_DIRECTORY "${REP}")
if(NOT DEFINED ENTREE)
  set(ENTREE /dev/null)
endif()

string(REPLACE "@A@" ";" arguments "${ARGUMENTS}")
execute_process(COMMAND "${PROGRAMME}" ${arguments}
  WORKING_DIRECTORY "${REP}" INPUT_FILE "${ENTREE}"
  RESULT_VARIABLE code OUTPUT_VARIABLE sortie ERROR_VARIABLE erreur)

# Le programme écrit les chemins sous leur forme résolue (liens suivis).
file(REAL_PATH "${REP}" reel)
foreach(texte sortie erreur)
  string(REPLACE "${reel}" "<REP>" ${texte} "${${texte}}")
  string(REPLACE "${REP}" "<REP>" ${texte} "${${texte}}")
  string(REGEX REPLACE "[0-9][0-9]/[0-9][0-9]/[0-9][0-9][0-9][0-9] [0-9][0-9]:[0-9][0-9]:[0-9][0-9]" "<HORODATE>"
         ${texte} "${${texte}}")
  string(REGEX REPLACE "\"identifiant\": \"[0-9A-F]+\"" "\"identifiant\": \"<ID>\"" ${texte} "${${texte}}")
endforeach()

file(READ "${SORTIE}" sortie_attendue)
file(READ "${ERREUR}" erreur_attendue)
set(ecarts "")
if(NOT code STREQUAL CODE)
  string(APPEND ecarts "code de sortie ${code} au lieu de ${CODE}\n")
endif()
if(MOTIF)
  if(NOT sortie MATCHES "${sortie_attendue}")
    string(APPEND ecarts "sortie standard :\n[${sortie}]\nne répond pas au motif :\n[${sortie_attendue}]\n")
  endif()
elseif(NOT sortie STREQUAL sortie_attendue)
  string(APPEND ecarts "sortie standard :\n[${sortie}]\nau lieu de :\n[${sortie_attendue}]\n")
endif()
if(NOT erreur STREQUAL erreur_attendue)
  string(APPEND ecarts "sortie d'erreur :\n[${erreur}]\nau lieu de :\n[${erreur_attendue}]\n")
endif()
if(JSON)
  string(JSON type ERROR_VARIABLE erreur_json TYPE "${sortie}")
  if(NOT erreur_json STREQUAL "NOTFOUND")
    string(APPEND ecarts "la sortie standard n'est pas un JSON valide : ${erreur_json}\n")
  elseif(DEFINED JSON_LONGUEUR)
    string(JSON longueur LENGTH "${sortie}")
    if(NOT longueur EQUAL JSON_LONGUEUR)
      string(APPEND ecarts "${longueur} éléments JSON au lieu de ${JSON_LONGUEUR}\n")
    endif()
  endif()
endif()
if(ecarts)
  list(JOIN arguments " " commande)
  message(FATAL_ERROR "(dans ${REP})\nrqbase ${commande}\n${ecarts}")
endif()
