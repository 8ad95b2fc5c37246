# Bout en bout de la commande nom : les clés d'un nom, sans dossier, par le vrai binaire.
# Les fonctions rq_cas et rq_cas_action viennent de cas_dossier.cmake.

# Le blanc d'avant la parenthèse reste dans la clé (fin de la première ligne).
rq_cas(noms 01_texte SORTIE [=[Clé : LECUYER 
Sans particules : Écuyer (dit Martin)
Index : ECUYER DIT MARTIN
Soundex : E263
]=] ARGS nom "L'Écuyer (dit Martin)")
rq_cas(noms 02_particules JSON SORTIE [=[{
  "cle": "DE LA TOUR",
  "index": "TOUR",
  "sans_particules": "Tour",
  "soundex": "T6"
}
]=] ARGS --json nom "de la Tour")
# Rien que des particules : tout est vide sauf la clé, et le soundex vide s'écrit "".
rq_cas(noms 03_particules_seules JSON SORTIE [=[{
  "cle": "DE LA",
  "index": "",
  "sans_particules": "",
  "soundex": ""
}
]=] ARGS nom --json "de la")
# Une fermante égarée ouvre un passage sauté dans la clé ; l'index ôte seulement les parenthèses.
rq_cas(noms 04_parenthese_egaree JSON SORTIE [=[{
  "cle": "DUPONTJEAN",
  "index": "DUPONT DIT JEAN",
  "sans_particules": "Dupont) dit (Jean",
  "soundex": "D153"
}
]=] ARGS --json nom "Dupont) dit (Jean")
rq_cas(noms 05_accents JSON SORTIE [=[{
  "cle": "HELENE-MARIE",
  "index": "HELENE-MARIE",
  "sans_particules": "Hélène-Marie",
  "soundex": "E455"
}
]=] ARGS --json nom "Hélène-Marie")
rq_cas(noms 06_emoji CODE 1 ERREUR [=[rqbase : Le caractère U+1F600 (dans le nom) n'existe pas dans le codage des dossiers (Windows-1252) : rien n'a été enregistré.
]=] ARGS nom "Dupont😀")
rq_cas(noms 07_sans_texte CODE 2 ERREUR [=[rqbase : argument ou option obligatoire manquant : TEXTE
rqbase --aide pour l'aide.
]=] ARGS nom)
