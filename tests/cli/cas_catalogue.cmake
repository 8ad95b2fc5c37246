# Bout en bout de « rqbase catalogue » : la liste des champs d'un dossier, un champ en
# entier, le décodage d'une ligne lue sur l'entrée standard, en texte et en JSON, avec les
# refus. Les cas passent par rq_cas (cas_dossier.cmake) : un scénario par dossier de travail,
# chaque pas figé au caractère près.

# --- Le catalogue d'un dossier neuf -----------------------------------------------------------

rq_cas(catalogue 01_creer SORTIE [=[Dossier créé : Famille.rq2
]=] ARGS creer Famille --premiere-personne)
rq_cas(catalogue 02_liste SORTIE [=[NOM                  Nom                         Nom                                                 P N
PRENOM               Prénoms                     Prénoms                                             P N
SEXE                 Sexe                        Sexe                                                P N
SOSA                 No Sosa                     N° Sosa-Strad.                                      P N
IMAGE                Image                       Evénement avec info            _IMG                 P O
NAISSANCE            Naissance                   Evénement simple               BIRT                 P N
BAPTEME              Baptême                     Evénement simple               CHR                  P N
ADOPTION             Adoption                    Evénement simple               ADOP                 P N
SERVICE_MILITAIRE    Service militaire           Evénement simple               MILI                 P N
RESIDENCE            Résidence                   Evénement avec info            RESI                 P O
CONCUBINAGE          Concubinage                 Evénement simple               _CCB                 C N
PACS                 Pacs                        Evénement simple               _PCS                 C N
FIANCAILLES          Fiançailles                 Evénement simple               ENGA                 C N
BANS                 Bans                        Evénement simple               MARB                 C O
CTR-MARIAGE          Contrat mariage             Evénement simple               MARC                 C N
UNION                Union                       Evénement simple               MARR                 C N
DIVORCE              Divorce                     Evénement simple               DIV                  C N
RETRAITE             Retraite                    Evénement simple               RETI                 P N
RELATION             Relation                    Evénement simple               _REL                 P O
RECENSEMENT          Recensement                 Evénement avec info            CENS                 P O
DIPLOME              Diplôme                     Evénement simple               GRAD                 P O
NATURALISAT          Naturalisation              Evénement simple               NATU                 P O
TESTAMENT            Testament                   Evénement simple               WILL                 P O
BAR_MITZVAH          Bar Mitzvah                 Evénement simple               BARM                 P N
BAS_MITZVAH          Bas Mitzvah                 Evénement simple               BASM                 P N
DISPENSES_CONSANGUI  Dispenses de consanguinité  Evénement simple               _DPC                 C N
DISPENSES_AFFINITE   Dispenses d'affinité        Evénement simple               _DPA                 C N
DECORATION           Décoration                  Evénement avec info            DECO                 P O
EVENEMENT            Evénement                   Evénement avec info            _EVT                 P O
CHAHADA              Chahada                     Evénement simple               _CHD                 P N
EL_HADJ              El hadj                     Evénement simple               _ELH                 P O
DECES                Décès                       Evénement simple               DEAT                 P N
INVENTAIRE_DECES     Inventaire après décès      Evénement simple               _IVD                 P N
INHUMATION           Inhumation                  Evénement simple               BURI                 P N
CREMATION            Crémation                   Evénement simple               CREM                 P N
COHE_VALID           Cohérences validées         Booléen : Vrai/Faux/?          _CHV                 P N
PROFESSION           Professions                 Evénement avec info            OCCU                 P O
SIGNATURE            Signature                   Booléen : Vrai/Faux/?          SIGN                 P N
EDUCATION            Education                   Texte                          EDUC                 P N
CONFIDENTIEL         Confidentiel                Booléen : Vrai/Faux/?          _CFT                 P N
RELIGION             Religion                    Liste de choix                 RELI                 P O
NATIONALITE          Nationalité                 Texte                          NATI                 P O
TITRE                Titre                       Texte                          TITL                 P O
DCF                  Date de création            Date de création               _DCT                 P N
DDMF                 Date dern. modif.           Date de dernière modification  CHAN                 P N
FILIATION_PERE       Filiation avec le père      Booléen : Vrai/Faux/?          _FILP                N N
FILIATION_MERE       Filiation avec la mère      Booléen : Vrai/Faux/?          _FILM                N N
EMAIL                e-mail                      E-mail                         EMAIL                P O
ABN_NOTIF            Abonné à la notification    Booléen : Vrai/Faux/?          _AB_NOTIF            P N
DDNOTIF              Date de notification.       Date de dernière notification  _DDNOTIF             P N
S_P                  Personne sans descendance   Booléen : Vrai/Faux/?          _S_P                 P N
RELATION_PRIV        Relation privilégiée        Evénement simple               _REL_PRIV            P N
P_SA                 Ascendance inconnue         Booléen : Vrai/Faux/?          _P_SA                P N
ORIGINE_DONNEE       Origine de la donnée        Texte                          _ORG                 P N
DISTANCECUM          Mobilité en KM              Nombre                         _DISTANCECUM         P N
FAVORIS              Personne favorite           Booléen : Vrai/Faux/?          _FAVORIS             P N
IMAGE_SIGNATURE      Image Signature             Evénement avec info            _IMG_SIGN            P O
SIGNALEMENT          Signalement                 Evénement avec info            _SIGNALEMENT         P N
REGISTRE_MATRICULE   Registre Matricule          Evénement avec info            _REGISTRE_MATRICULE  P N
]=] ARGS catalogue Famille)
# Le JSON de la liste : un tableau de 59 champs dont on fige les deux premiers.
rq_cas(catalogue 03_liste_json JSON JSON_LONGUEUR 59 MOTIF SORTIE [=[^\[
  {
    "liaison": "P",
    "libelle_ecran": "Nom",
    "libelle_interne": "NOM",
    "repete": false,
    "tag_gedcom": "",
    "type_texte": "Nom"
  },
  {
    "liaison": "P",
    "libelle_ecran": "Prénoms",
    "libelle_interne": "PRENOM",
    "repete": false,
    "tag_gedcom": "",
    "type_texte": "Prénoms"
  },
]=] ARGS --json catalogue Famille.rq2)
rq_cas(catalogue 04_champ SORTIE [=[Libellé interne     : RECENSEMENT
Libellé d'écran     : Recensement
Type                : 9 (Evénement avec info)
Description         : 
Morceaux            : 4
Largeurs            : 90, 4, 3, 3
Noms                : Quartier, n° maison, n° ménage, n° individu
Balise GEDCOM       : CENS
Sous-balises        : 
Dictionnaires       : 58, 59, 60, 61
Répété              : oui
Liaison             : P
Symbole             : 
Masculin / féminin  :  / 
Après décès         : non
Oui/Non             : oui
Valeur par défaut   : 0
Équivalents         : 
Avec résumé         : oui
Entiers             : 0, 0
Chemin du modèle    : 
Ligne               : RECENSEMENT<TAB>Recensement<TAB>EC<TAB><TAB>4<TAB>90, 4, 3, 3<TAB>Quartier, n° maison, n° ménage, n° individu<TAB>CENS<TAB>, , , <TAB>58, 59, 60, 61<TAB>O<TAB>P<TAB><TAB><TAB><TAB>N<TAB>O<TAB>0<TAB><TAB>N<TAB><TAB>O<TAB>0<TAB>0<TAB>
]=] ARGS catalogue Famille --champ RECENSEMENT)
rq_cas(catalogue 05_champ_json_par_prs JSON SORTIE [=[{
  "apres_deces": false,
  "avec_resume": true,
  "chemin_modele": "",
  "description": "",
  "dictionnaires": [
    46
  ],
  "entier1": 0,
  "entier2": 0,
  "equivalents": "BAPTEME",
  "expressions": [
    "#S (est né/est née|naît|voit le jour) #D #L",
    "#S (est né/est née|naît|voit le jour) #L #D",
    "#D (est né/est née|naît|voit le jour) #S #L",
    "#L (est né/est née|naît|voit le jour) #S #D",
    "(il est né/elle est née|il naît/elle naît|il voit le jour/elle voit le jour) #D #L",
    "(il est né/elle est née|il naît/elle naît|il voit le jour/elle voit le jour) #L #D"
  ],
  "feminin": "Née",
  "liaison": "P",
  "libelle_ecran": "Naissance",
  "libelle_interne": "NAISSANCE",
  "ligne": "NAISSANCE\tNaissance\tES\t\t1\t20\t\tBIRT\t\t46\tN\tP\t°\tNé\tNée\tN\tO\t0\tBAPTEME\tO\t#S (est né/est née|naît|voit le jour) #D #L$#S (est né/est née|naît|voit le jour) #L #D$#D (est né/est née|naît|voit le jour) #S #L$#L (est né/est née|naît|voit le jour) #S #D$(il est né/elle est née|il naît/elle naît|il voit le jour/elle voit le jour) #D #L$(il est né/elle est née|il naît/elle naît|il voit le jour/elle voit le jour) #L #D\tO\t0\t0\t",
  "masculin": "Né",
  "nb_morceaux": 1,
  "noms": [
    ""
  ],
  "oui_non": true,
  "repete": false,
  "sous_tags": [
    ""
  ],
  "symbole": "°",
  "tag_gedcom": "BIRT",
  "tailles": [
    20
  ],
  "type": 8,
  "type_texte": "Evénement simple",
  "utilise_equivalent": true,
  "val_defaut": 0
}
]=] ARGS --json catalogue Famille.rq2/Famille.prs --champ NAISSANCE)
rq_cas(catalogue 06_champ_inconnu CODE 1 ERREUR [=[rqbase : Le champ "NAISANCE" n'existe pas dans ce catalogue.
]=] ARGS catalogue Famille --champ NAISANCE)
rq_cas(catalogue 07_sans_dossier CODE 1 ERREUR [=[rqbase : Indiquez un DOSSIER, ou la commande decoder.
]=] ARGS catalogue)
rq_cas(catalogue 08_introuvable CODE 1 ERREUR [=[rqbase : Le dossier "Absent" n'a pas de catalogue des champs (Absent/Absent.dch).
]=] ARGS --json catalogue Absent)

# Un dossier dont le catalogue manque : dit, code 1.
rq_cas(catalogue 10_copier SORTIE [=[Dossier copié : Sans.rq2
]=] ARGS copier Famille Sans)
rq_cas_action(catalogue 11_retire_catalogue ${CMAKE_COMMAND} -E rm Sans.rq2/Sans.dch)
rq_cas(catalogue 12_catalogue_absent CODE 1 ERREUR [=[rqbase : Le dossier "Sans" n'a pas de catalogue des champs (Sans.rq2/Sans.dch).
]=] ARGS catalogue Sans)
# Un catalogue abîmé (nombre de champs illisible) n'arrête rien : la lecture s'arrête et le
# dossier reçoit les champs de mise à niveau.
file(WRITE ${RQ_CAS_ATTENDUS}/catalogue_abime.dch "n'importe quoi\r\nNOM\r\n")
rq_cas_action(catalogue 13_abime_catalogue ${CMAKE_COMMAND} -E copy ${RQ_CAS_ATTENDUS}/catalogue_abime.dch Sans.rq2/Sans.dch)
rq_cas(catalogue 14_catalogue_abime SORTIE [=[FILIATION_PERE       Filiation avec le père      Booléen : Vrai/Faux/?          _FILP                N N
FILIATION_MERE       Filiation avec la mère      Booléen : Vrai/Faux/?          _FILM                N N
ORIGINE_DONNEE       Origine de la donnée        Texte                          _ORG                 P N
EMAIL                e-mail                      E-mail                         EMAIL                P O
ABN_NOTIF            Abonné à la notification    Booléen : Vrai/Faux/?          _AB_NOTIF            P N
S_P                  Personne sans descendance   Booléen : Vrai/Faux/?          _S_P                 P N
RELATION_PRIV        Relation privilégiée        Evénement simple               _REL_PRIV            P N
P_SA                 Ascendance inconnue         Booléen : Vrai/Faux/?          _P_SA                P N
DDNOTIF              Date de notification.       Date de dernière notification  _DDNOTIF             P N
DISTANCECUM          Mobilité en KM              Nombre                         _DISTANCECUM         P N
FAVORIS              Personne favorite           Booléen : Vrai/Faux/?          _FAVORIS             P N
IMAGE_SIGNATURE      Image Signature             Evénement avec info            _IMG_SIGN            P O
SIGNALEMENT          Signalement                 Evénement avec info            _SIGNALEMENT         P N
REGISTRE_MATRICULE   Registre Matricule          Evénement avec info            _REGISTRE_MATRICULE  P N
RECENSEMENT          Recencement                 Evénement avec info            CENS                 P O
]=] ARGS catalogue Sans)

# --- decoder ----------------------------------------------------------------------------------

# Une ligne en Windows-1252 (é = octet E9) est reconnue comme telle.
string(ASCII 233 e_aigu)
rq_cas(catalogue_decoder 01_windows_1252 ENTREE "Pr${e_aigu}noms<TAB>Pr${e_aigu}noms<TAB>PRENOM<TAB><TAB>2<TAB>60<TAB><TAB><TAB><TAB><TAB>N<TAB>P"
  SORTIE [=[Libellé interne     : Prénoms
Libellé d'écran     : Prénoms
Type                : 2 (Prénoms)
Description         : 
Morceaux            : 2
Largeurs            : 60, 15
Noms                : 
Balise GEDCOM       : 
Sous-balises        : 
Dictionnaires       : 0, 0
Répété              : non
Liaison             : P
Symbole             : 
Masculin / féminin  :  / 
Après décès         : non
Oui/Non             : oui
Valeur par défaut   : 0
Équivalents         : 
Avec résumé         : oui
Entiers             : 0, 0
Chemin du modèle    : 
Ligne               : Prénoms<TAB>Prénoms<TAB>PRENOM<TAB><TAB>2<TAB>60, 15<TAB>, <TAB><TAB>, <TAB>0, 0<TAB>N<TAB>P<TAB><TAB><TAB><TAB>N<TAB>O<TAB>0<TAB><TAB><TAB><TAB>O<TAB>0<TAB>0<TAB>
]=] ARGS catalogue decoder)
rq_cas(catalogue_decoder 02_json ENTREE "NOM<TAB>Nom<TAB>NOM<TAB><TAB>1<TAB>40<TAB><TAB><TAB><TAB><TAB>N<TAB>P" JSON
  SORTIE [=[{
  "apres_deces": false,
  "avec_resume": true,
  "chemin_modele": "",
  "description": "",
  "dictionnaires": [
    0
  ],
  "entier1": 0,
  "entier2": 0,
  "equivalents": "",
  "expressions": [],
  "feminin": "",
  "liaison": "P",
  "libelle_ecran": "Nom",
  "libelle_interne": "NOM",
  "ligne": "NOM\tNom\tNOM\t\t1\t40\t\t\t\t0\tN\tP\t\t\t\tN\tO\t0\t\t\t\tO\t0\t0\t",
  "masculin": "",
  "nb_morceaux": 1,
  "noms": [
    ""
  ],
  "oui_non": true,
  "repete": false,
  "sous_tags": [
    ""
  ],
  "symbole": "",
  "tag_gedcom": "",
  "tailles": [
    40
  ],
  "type": 1,
  "type_texte": "Nom",
  "utilise_equivalent": false,
  "val_defaut": 0
}
]=] ARGS --json catalogue decoder)
# Une ligne abîmée se lit sans erreur : nombre de morceaux illisible (0), type inconnu, listes
# au-delà des morceaux ignorées.
rq_cas(catalogue_decoder 03_ligne_abimee ENTREE "X<TAB>Y<TAB>ZZ<TAB><TAB>abc<TAB>-5, 99999<TAB>un, deux, trois<TAB><TAB>x<TAB>-3, a" JSON
  SORTIE [=[{
  "apres_deces": false,
  "avec_resume": true,
  "chemin_modele": "",
  "description": "",
  "dictionnaires": [],
  "entier1": 0,
  "entier2": 0,
  "equivalents": "",
  "expressions": [],
  "feminin": "",
  "liaison": "P",
  "libelle_ecran": "Y",
  "libelle_interne": "X",
  "ligne": "X\tY\tES\t\t0\t\t\t\t\t\tN\tP\t\t\t\tN\tO\t0\t\tN\t\tO\t0\t0\t",
  "masculin": "",
  "nb_morceaux": 0,
  "noms": [],
  "oui_non": true,
  "repete": false,
  "sous_tags": [],
  "symbole": "",
  "tag_gedcom": "",
  "tailles": [],
  "type": 8,
  "type_texte": "Evénement simple",
  "utilise_equivalent": false,
  "val_defaut": 0
}
]=] ARGS catalogue decoder --json)
