# Lance une commande et compare exactement son code de sortie, sa sortie standard et sa
# sortie d'erreur aux attendus. Appelé par ctest : cmake -DPROGRAMME=... -DARGUMENTS=...
# -DCODE=... -DSORTIE=... -DERREUR=... -P verifie_commande.cmake
# "@A@" sépare les arguments ; dans SORTIE et ERREUR, "@N@" tient lieu de fin de ligne et
# "@P@" de point-virgule (une ligne de commande de ctest ne les garde pas tels quels).
foreach(variable SORTIE ERREUR)
  string(REPLACE "@N@" "\n" ${variable} "${${variable}}")
  string(REPLACE "@P@" ";" ${variable} "${${variable}}")
endforeach()
string(REPLACE "@A@" ";" arguments "${ARGUMENTS}")
execute_process(COMMAND ${PROGRAMME} ${arguments}
  RESULT_VARIABLE code OUTPUT_VARIABLE sortie ERROR_VARIABLE erreur)
set(ecarts "")
if(NOT code STREQUAL CODE)
  string(APPEND ecarts "code de sortie ${code} au lieu de ${CODE}\n")
endif()
if(NOT sortie STREQUAL SORTIE)
  string(APPEND ecarts "sortie standard :\n[${sortie}]\nau lieu de :\n[${SORTIE}]\n")
endif()
if(NOT erreur STREQUAL ERREUR)
  string(APPEND ecarts "sortie d'erreur :\n[${erreur}]\nau lieu de :\n[${ERREUR}]\n")
endif()
if(ecarts)
  list(JOIN arguments " " commande)
  message(FATAL_ERROR "rqbase ${commande}\n${ecarts}")
endif()
