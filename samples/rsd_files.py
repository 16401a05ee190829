"""The RSD samples: a kennel in a plain file, a cattery in one with the product's key."""
import datetime
import itertools
import pathlib
import sqlite3
import subprocess

import herds

KEY = "mbtfwqzkhl"
LAYOUT = pathlib.Path(__file__).with_name("rsd-layout.sql")


def stored(text):
    """Names and notes lie in the file with a backtick for each apostrophe."""
    return text.replace("'", "`")


def insert(db, table, **values):
    marks = ",".join("?" * len(values))
    db.execute(f"INSERT INTO {table} ({','.join(values)}) VALUES ({marks})", list(values.values()))


def parents(animal):
    """The ids of the parents as the file holds them: text, empty where there is none."""
    return tuple(str(parent.number) if parent else "" for parent in (animal.father, animal.mother))


def fill_tree(db, herd, customs):
    notes = ["", "Bold, friendly, good with children", "Shown twice.\nPlaced second at St. Anne's.", "",
             "Stud fee $250", "Feeds at 10:00 and 18:00", ""]
    for animal in herd:
        n = animal.number
        father, mother = parents(animal)
        names = [stored(parent.full_name) if parent else "" for parent in (animal.father, animal.mother)]
        insert(
            db, "tree", name=stored(animal.name), fatherId=father, motherId=mother, colour=animal.colour,
            breed=herd.breed, sex="male" if animal.male else "female",
            # Dates of an older version of the product carry a time of midnight.
            dob=f"{animal.born} 00:00:00" if n % 5 == 0 else str(animal.born), notes=stored(notes[n % len(notes)]),
            ps=names[0], pd=names[1], cage=f"Run {n % 6 + 1}", tag=f"{herd.breed[:2].upper()}{n:04}", deceased="False",
            health="Vaccinated" if n % 2 else "", callname=animal.name.split()[0].split("'")[0], sold="False",
            prefix=animal.prefix, suffix="Ch" if n % 6 == 1 else "",
            DateAdded=str(animal.born + datetime.timedelta(days=14)),
            **{f"customField{place}": value(n) for place, (_, value) in customs.items()})


def fill_settings(db, customs, **values):
    names = {f"CustomName{place}": name for place, (name, _) in customs.items()}
    insert(db, "settings", **values, **names, Version="20402", autoBackup="True", StorePhotos="False")


def fill_breeding(db, herd, gestation):
    """A mating for each litter of the herd, and a last one that came to nothing."""
    born = [animal for animal in herd if animal.father]
    columns = [row[1] for row in db.execute("PRAGMA table_info(breeding)")]
    for (day, father, mother), young in itertools.groupby(born, lambda a: (a.born, a.father.number, a.mother.number)):
        litter = list(young)
        males = sum(animal.male for animal in litter)
        mated = day - datetime.timedelta(days=gestation)
        extra = {"numUndefined": "0"} if "numUndefined" in columns else {}
        insert(db, "breeding", fatherId=str(father), motherId=str(mother), breed=herd.breed, mated=str(mated),
               due=str(day), born=str(day), numBoars=str(males), numSows=str(len(litter) - males),
               notes=f"{litter[0].colour} and {litter[-1].colour}", sold="True" if day.year < 2020 else "False",
               unsuccessful="0", stillBorn=str(father % 2), undefined="0", numEggs="", numInfertile="", **extra)
    male = [animal for animal in herd if animal.male][-3]
    female = [animal for animal in herd if not animal.male][-6]
    insert(db, "breeding", fatherId=str(male.number), motherId=str(female.number), breed=herd.breed,
           mated="2024-11-02", due="2025-01-04", notes="", sold="False", unsuccessful="-1")


def fill_sales(db, herd):
    buyers = ["Mrs. Ada Fielding", "J. Marchetti", "Stella O'Neill", "Park Farm"]
    young = [animal for animal in herd if animal.father and animal.number % 4 == 0]
    for place, animal in enumerate(young):
        father, mother = parents(animal)
        sold = animal.born + datetime.timedelta(weeks=10)
        insert(db, "soldstock", nameId=str(animal.number), motherId=mother, fatherId=father,
               Offspring=stored(animal.full_name), DateSold=str(sold), SoldTo=stored(buyers[place % len(buyers)]),
               Notes=" - with papers" if place % 2 else "", Price=str(400 + 50 * place))


def fill_treatments(db, herd, treatments):
    """Two treatments for each animal of the last ten, the first of them done."""
    for animal in list(herd)[-10:]:
        for place, (name, weeks) in enumerate(treatments):
            insert(db, "vaccinations", nameId=str(animal.number), name=stored(animal.full_name), vaccination=name,
                   duedate=str(animal.born + datetime.timedelta(weeks=weeks)), done="False" if place else "True")


def fill_what_stays_behind(db, herd):
    """Rows in tables that no conversion carries."""
    for animal in list(herd)[-5:]:
        for weeks in (2, 4, 8):
            insert(db, "weights", nameId=str(animal.number), name=stored(animal.full_name), pregnant="False",
                   weightDate=str(animal.born + datetime.timedelta(weeks=weeks)), weight=f"{weeks * 0.4:.1f}")
    insert(db, "contacts", name="Dr. Hale", city="Thornbury", phone="01632 960 114", category="Vet")
    insert(db, "reminders", duedate="2025-03-01", reminder="Renew the club membership", done="False")


def kennel():
    customs = {1: ("Hip score", lambda n: f"{n % 5 + 2}/{n % 4 + 3}"), 2: ("Eye test", lambda n: "Clear"),
               3: ("Judge's remark", lambda n: "Excellent" if n % 3 else ""),
               13: ("Insurance no.", lambda n: f"IN-{n * 91}")}
    herd = herds.border_collies()
    db = sqlite3.connect(":memory:")
    db.executescript(LAYOUT.read_text())
    fill_settings(db, {place: (stored(name), value) for place, (name, value) in customs.items()},
                  Breeder="Windrush Border Collies", BreederName="R. Windrush", Animal="Dogs", Male="Dog",
                  Female="Bitch", Father="Sire", Mother="Dam", Gestation=63, Country="United Kingdom",
                  WeightMeasure="kg")
    fill_tree(db, herd, customs)
    fill_breeding(db, herd, gestation=63)
    fill_sales(db, herd)
    fill_treatments(db, herd, [("Distemper", 8), ("Rabies", 16)])
    fill_what_stays_behind(db, herd)
    return db


def cattery():
    customs = {1: ("Blood group", lambda n: "AB"[n % 2]), 2: ("PRA test", lambda n: "N/N" if n % 3 else "N/rdAc"),
               3: ("Eye colour", lambda n: "Deep blue")}
    herd = herds.siamese_cats()
    db = sqlite3.connect(":memory:")
    db.executescript(LAYOUT.read_text())
    # An older version of the product counted the young of unknown sex in a column of this name.
    db.execute("ALTER TABLE breeding ADD COLUMN numUndefined Varchar")
    fill_settings(db, customs, Breeder="Moonstone Siamese", BreederName="C. Moon", Animal="Cats", Male="Tom",
                  Female="Queen", Father="Sire", Mother="Dam", Gestation=65, Country="New Zealand",
                  WeightMeasure="kg")
    fill_tree(db, herd, customs)
    fill_breeding(db, herd, gestation=65)
    fill_sales(db, herd)
    fill_treatments(db, herd, [("Cat flu", 9), ("FeLV", 13)])
    fill_what_stays_behind(db, herd)
    return db


def save(db, path):
    path.unlink(missing_ok=True)
    db.commit()
    with sqlite3.connect(path) as file:
        db.backup(file)
    file.close()


def save_with_key(db, path):
    """Through the sqlcipher command line. The salt is drawn anew each time, so only the content stays the same."""
    path.unlink(missing_ok=True)
    script = f"PRAGMA key='{KEY}';\n" + "\n".join(db.iterdump())
    subprocess.run(["sqlcipher", "-bail", str(path)], input=script.encode(), check=True, stdout=subprocess.DEVNULL)


def make_all(folder):
    save(kennel(), folder / "kennel.rsd")
    save_with_key(cattery(), folder / "cattery.rsd")
