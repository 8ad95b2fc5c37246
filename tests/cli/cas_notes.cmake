# Bout en bout des commandes des notes et du texte RTF (rq_cas : voir cas_dossier.cmake).
# Le texte d'une note vient de l'entrée standard (ENTREE).

# --- Écrire, lister, lire, supprimer ------------------------------------------------------

rq_cas(notes_personne 01_creer SORTIE [=[Dossier créé : Famille.rq2
]=] ARGS creer Famille --premiere-personne)
rq_cas(notes_personne 02_ajouter SORTIE [=[Personne 2 ajoutée.
]=] ARGS ajouter-personne Famille --nom Martin --prenoms Louise --sexe F)
# La personne n'a pas encore de notes : la note prend le bloc 1, l'en-tête le bloc 2.
rq_cas(notes_personne 03_ecrire ENTREE [=[Née à Paris
le 3 mars 1850.
]=] SORTIE [=[Note « Générale » enregistrée pour la personne 2.
]=] ARGS note ecrire Famille 2 --titre Générale)
rq_cas(notes_personne 04_ecrire_rtf_json JSON ENTREE [=[{\rtf1\ansi{\fonttbl{\f0 Arial;}}\f0 Acte du 3 mars\par Paroisse Saint-Jean}
]=] SORTIE [=[{
  "bloc": 3,
  "titre": "Acte de naissance"
}
]=] ARGS --json note ecrire Famille 2 --titre "Acte de naissance")
rq_cas(notes_personne 05_titres_json JSON SORTIE [=[[
  {
    "bloc": 1,
    "titre": "Générale"
  },
  {
    "bloc": 3,
    "titre": "Acte de naissance"
  }
]
]=] ARGS --json note titres Famille 2)
rq_cas(notes_personne 06_titres_texte SORTIE [=[Générale<TAB>1
Acte de naissance<TAB>3
]=] ARGS note titres Famille.rq2 2)
# Le titre se compare sans la casse ; les fins de ligne reviennent en LF.
rq_cas(notes_personne 07_lire SORTIE [=[Née à Paris
le 3 mars 1850.
]=] ARGS note lire Famille 2 --titre générale)
rq_cas(notes_personne 08_lire_json JSON SORTIE [=[{
  "texte": "Née à Paris\nle 3 mars 1850.\n",
  "titre": "Générale"
}
]=] ARGS --json note lire Famille 2 --titre Générale)
rq_cas(notes_personne 09_lire_rtf SORTIE [=[{\rtf1\ansi{\fonttbl{\f0 Arial;}}\f0 Acte du 3 mars\par Paroisse Saint-Jean}
]=] ARGS note lire Famille 2 --titre "Acte de naissance")
rq_cas(notes_personne 10_lire_rtf_texte SORTIE [=[Acte du 3 mars
Paroisse Saint-Jean
]=] ARGS note lire Famille 2 --titre "Acte de naissance" --texte)
# La fiche de la personne garde le bloc de son en-tête de notes.
rq_cas(notes_personne 11_fiche MOTIF SORTIE [=[.*Note        : 2
.*]=] ARGS personne Famille 2)
# Réécrire une note ordinaire lui donne une chaîne neuve (bloc 4).
rq_cas(notes_personne 12_reecrire JSON ENTREE [=[Née à Paris (paroisse Saint-Sulpice).
]=] SORTIE [=[{
  "bloc": 4,
  "titre": "Générale"
}
]=] ARGS --json note ecrire Famille 2 --titre Générale)
rq_cas(notes_personne 13_supprimer SORTIE [=[Note « générale » supprimée pour la personne 2.
]=] ARGS note supprimer Famille 2 --titre générale)
rq_cas(notes_personne 14_titres_apres JSON SORTIE [=[[
  {
    "bloc": 3,
    "titre": "Acte de naissance"
  }
]
]=] ARGS --json note titres Famille 2)
rq_cas(notes_personne 15_lire_supprimee CODE 1 ERREUR [=[rqbase : La personne 2 n'a pas de note « Générale ».
]=] ARGS note lire Famille 2 --titre Générale)
rq_cas(notes_personne 16_sans_notes JSON SORTIE [=[[]
]=] ARGS --json note titres Famille 1)
rq_cas(notes_personne 17_supprimer_json JSON SORTIE [=[{
  "supprime": "Acte de naissance"
}
]=] ARGS --json note supprimer Famille 2 --titre "Acte de naissance")

# --- Refus : code 1, message français, pas un octet changé ------------------------------

rq_cas(notes_refus 01_creer SORTIE [=[Dossier créé : Famille.rq2
]=] ARGS creer Famille --premiere-personne)
rq_cas(notes_refus 02_ecrire ENTREE [=[Première note
]=] SORTIE [=[Note « G » enregistrée pour la personne 1.
]=] ARGS note ecrire Famille 1 --titre G)
rq_cas_action(notes_refus 03_garde ${CMAKE_COMMAND} -E copy_directory Famille.rq2 avant.rq2)
rq_cas(notes_refus 04_caractere_absent CODE 1 ENTREE [=[Ω grec
]=] ERREUR [=[rqbase : Le caractère U+03A9 (dans le texte de la note) n'existe pas dans le codage des dossiers (Windows-1252) : rien n'a été enregistré.
]=] ARGS note ecrire Famille 1 --titre G)
rq_cas(notes_refus 05_vide CODE 1 ENTREE "" ERREUR [=[rqbase : La note est vide : rien n'a été enregistré (rqbase note supprimer efface une note).
]=] ARGS note ecrire Famille 1 --titre G)
rq_cas(notes_refus 06_personne_absente CODE 1 ENTREE "x" ERREUR [=[rqbase : La personne 9 n'existe pas dans ce dossier.
]=] ARGS note ecrire Famille 9 --titre G)
# Un titre vide n'arrive pas jusqu'à la commande : la ligne de commande le refuse.
rq_cas(notes_refus 07_titre_vide CODE 2 ENTREE "x" ERREUR [=[rqbase : il manque la valeur de l'option --titre
rqbase --aide pour l'aide.
]=] ARGS note ecrire Famille 1 --titre=)
rq_cas(notes_refus 08_titre_tabulation CODE 1 ENTREE "x" ERREUR [=[rqbase : Le titre contient un caractère de contrôle (U+0009) : rien n'a été enregistré.
]=] ARGS note ecrire Famille 1 --titre "a<TAB>b")
string(REPEAT "Titre très long " 32 titre_long)
rq_cas(notes_refus 09_en_tete_plein CODE 1 ENTREE "x" ERREUR [=[rqbase : Les titres des notes de la personne 1 ne tiennent plus dans leur bloc : rien n'a été enregistré.
]=] ARGS note ecrire Famille 1 --titre "${titre_long}")
rq_cas(notes_refus 10_supprimer_absente CODE 1 ERREUR [=[rqbase : La personne 1 n'a pas de note « Autre » : rien n'a été changé.
]=] ARGS note supprimer Famille 1 --titre Autre)
rq_cas(notes_refus 11_introuvable CODE 1 ENTREE "x" ERREUR [=[rqbase : Le dossier "Absent" est introuvable.
]=] ARGS note ecrire Absent 1 --titre G)
rq_cas_action(notes_refus 12_lecture_seule_pose chmod a-w Famille.rq2)
rq_cas(notes_refus 13_lecture_seule CODE 1 ENTREE "x" ERREUR [=[rqbase : Le dossier "Famille" est en lecture seule : rien n'a été changé.
]=] ARGS note ecrire Famille 1 --titre G)
rq_cas(notes_refus 14_lecture_seule_lire SORTIE [=[Première note
]=] ARGS note lire Famille 1 --titre G)
rq_cas_action(notes_refus 15_lecture_seule_ote chmod u+w Famille.rq2)
rq_cas(notes_refus 16_sans_commande CODE 2 ERREUR [=[rqbase : il manque la commande (voir --aide)
rqbase --aide pour l'aide.
]=] ARGS note)
# Aucun refus n'a changé le dossier (les fichiers de travail de la base exceptés).
rq_cas_action(notes_refus 17_rien_change ${CMAKE_COMMAND} -E compare_files Famille.rq2/Famille.not avant.rq2/Famille.not)
rq_cas_action(notes_refus 18_rien_change_prs ${CMAKE_COMMAND} -E compare_files Famille.rq2/Famille.prs avant.rq2/Famille.prs)

# --- RTF vers texte ------------------------------------------------------------------------

rq_cas(rtf_texte 01_decapeur ENTREE [=[{\rtf1\ansi Bonjour\par le monde}]=] SORTIE "Bonjour \n le monde\n"
  ARGS rtf texte)
rq_cas(rtf_texte 02_sans_sauts JSON ENTREE [=[{\rtf1\ansi Bonjour\par le monde}]=] SORTIE [=[{
  "texte": "Bonjour  le monde"
}
]=] ARGS --json rtf texte --sans-sauts)
rq_cas(rtf_texte 03_lecteur ENTREE [=[{\rtf1\ansi Bonjour\par le \b monde\b0.}]=] SORTIE [=[Bonjour
le monde.
]=] ARGS rtf texte --lecteur)
rq_cas(rtf_texte 04_lecteur_json JSON ENTREE [=[{\rtf1\ansi Caf\'e9\par cr\'e8me}]=] SORTIE [=[{
  "texte": "Café crème"
}
]=] ARGS --json rtf texte --lecteur --sans-sauts)
# Le décapeur perd le point collé à un mot de commande, le lecteur le garde.
rq_cas(rtf_texte 05_point_perdu ENTREE [=[{\rtf1 le \b monde\b0.}]=] SORTIE [=[le  monde
]=] ARGS rtf texte)
# Accolades déséquilibrées et échappement coupé au bout : pas d'erreur.
rq_cas(rtf_texte 06_mal_forme ENTREE [=[{\rtf1 a{\info b\'e]=] SORTIE [=[ab
]=] ARGS rtf texte)
rq_cas(rtf_texte 07_vide ENTREE "" SORTIE "" ARGS rtf texte)
