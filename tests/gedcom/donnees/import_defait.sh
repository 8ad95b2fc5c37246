#!/bin/sh
# Un import dans un dossier qui existait, arrêté au milieu par la taille des fichiers bornée
# (le disque « plein ») : il sort en erreur, dit qu'il a été défait sans renvoyer à un menu,
# ne laisse pas sa copie, et chaque fichier du dossier revient à l'octet près.
# $1 : le programme ; $2 : le dossier (dans le répertoire courant).
programme=$1
dossier=$2
awk 'BEGIN { print "0 HEAD"; for (i = 1; i <= 3000; i++) { print "0 @I" i "@ INDI"; print "1 NAME P" i " /Gros/";
  print "1 BIRT"; print "2 DATE 1900" } print "0 TRLR" }' > gros.ged || exit 1
cksum "$dossier".rq2/*.* > avant.txt || exit 1
(trap '' XFSZ; ulimit -f 1000; "$programme" importer gros.ged "$dossier" 2> erreur.txt)
code=$?
if [ $code -ne 1 ]; then echo "code de sortie $code au lieu de 1"; exit 1; fi
grep -q "le dossier est tel qu" erreur.txt || { echo "message inattendu :"; cat erreur.txt; exit 1; }
if grep -q "Utilitaire" erreur.txt; then echo "le message renvoie à un menu"; exit 1; fi
if [ -e "$dossier".rq2.~import ]; then echo "copie de sécurité laissée"; exit 1; fi
cksum "$dossier".rq2/*.* | cmp - avant.txt || { echo "le dossier a changé"; exit 1; }
