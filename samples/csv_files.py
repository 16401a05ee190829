"""The CSV samples: four species in four vocabularies, and one file with faulty lines."""
import herds


def join(fields):
    """One line. The format knows no quoting, so a comma inside a value would be a fault of this script."""
    assert not any("," in field for field in fields), fields
    return ",".join(fields)


def write(path, lines, line_end="\n", mark=""):
    path.write_bytes((mark + "".join(line + line_end for line in lines)).encode())


def dogs(folder):
    """Sire and dam by prefix and name, a kennel's custom columns, purchases of the founders."""
    titles = ["", "Ch", "", "HTD I", "", "CD", ""]
    notes = ["", "Good with children", "Best of Breed at O'Connell Park", "", "Wall-eyed on the left", "Co-owned"]
    sellers = {"Glenmore": "Mrs. R. Dunn", "Skerryvore": "A. O'Reilly", "Château Brume": "Mme. Lefèvre",
               "Fallowfield": "J. Hardy & Son"}
    parents = {"Bracken": ("Glenmore Laird", "Unknown"), "Nell": ("Glenmore Laird", "Glenmore Gyp"),
               "Sélène": ("Unknown", "Unknown")}
    lines = ["Name,Prefix,Post Title,Sex,Breed,Colour,DOB,Sire Name,Dam Name,Reg No.,Call Name,Hip Score,Elbow Score,"
             "Eye Test,Microchip,Date Purchased,Bought From,Price,Notes"]
    herd = herds.border_collies()
    for dog in herd:
        n = dog.number
        sire, dam = (dog.father.full_name, dog.mother.full_name) if dog.father else parents.get(dog.name, ("", ""))
        bought = ("", "", "")
        if not dog.father:
            bought = (f"{dog.born.year + 1}-01-{n + 10}", sellers[dog.prefix], f"${n * 40 + 350}")
        lines.append(join([
            dog.name, dog.prefix, titles[n % len(titles)], "dog" if dog.male else "bitch", herd.breed, dog.colour,
            str(dog.born), sire, dam, f"BC{dog.born.year % 100:02}-{n:04}", dog.name.split()[0].split("'")[0],
            f"{n % 5 + 2}/{n % 4 + 3}", str(n % 2), "Clear" if n % 3 else f"Clear {dog.born.year + 2}",
            f"9560000{n * 7919 % 100000000:08}", *bought, notes[n % len(notes)]]))
    write(folder / "dogs.csv", lines)


def rabbit_lines():
    treatments = ["RHD2 vaccine", "", "Ear mites", "RHD2 vaccine", ""]
    notes = ["Broken coat", "", "Best in class at Bishop's Green", "Steady mother", "", "Retained for show"]
    lines = ["Name,Cage No.,Breed,Color,Sex,Born,Buck,Doe,Tag,Weight kg,Treatments,Notes"]
    herd = herds.mini_lops()
    for rabbit in herd:
        n = rabbit.number
        buck, doe = (rabbit.father.name, rabbit.mother.name) if rabbit.father else ("unknown", "")
        lines.append(join([
            rabbit.name, f"{'ABC'[n % 3]}-{n // 3 + 1:02}", herd.breed, rabbit.colour, "buck" if rabbit.male else "doe",
            f"{rabbit.born.day} {rabbit.born:%b %Y}", buck, doe, f"BW{n + 100}", f"{1.4 + n % 5 / 10:.1f}",
            treatments[n % len(treatments)], notes[n % len(notes)]]))
    return lines


def rabbits(folder):
    """Buck and doe by name, dates with a month's name, Windows line ends."""
    write(folder / "rabbits.csv", rabbit_lines(), "\r\n")


def faulty_rabbits(folder):
    """The same hutch with what goes wrong in hand-kept files: five lines with the wrong number of commas."""
    lines = rabbit_lines()
    lines[3] = lines[3].replace("Thumper", "Thumper, Jr.")  # a comma in a name
    lines[7] += ", sold, but not yet fetched"  # commas in a note
    lines[11] = lines[11].rsplit(",", 2)[0]  # the last two columns left out
    place = lines[14].rindex(" ")
    lines[14:15] = [lines[14][:place], lines[14][place + 1:]]  # a line break in the middle of a note
    lines.insert(21, "")  # an empty line
    write(folder / "rabbits-faulty.csv", lines)


def birds(folder):
    """Ids of the source file, cock and hen by name where an id is not known, no column for the sex."""
    shows = ["", "", "Reserve", "", "Yes 2023"]
    lines = ["UID,Name,sireId,damId,Cock,Hen,Pen,Breed,Colour,Born,Ring,Best In Show,Notes"]
    herd = herds.budgerigars()
    for bird in herd:
        n = bird.number
        ids, names = ("", ""), ("", "")
        if bird.father and n % 4:
            ids = (str(bird.father.number), str(bird.mother.number))
        elif bird.father:  # from the old paper book, which knew names alone
            names = (bird.father.name, bird.mother.name)
        elif n < 4:
            ids = ("1", "1")  # the old program's way to write "no parent"
        lines.append(join([
            str(n), bird.name, *ids, *names, f"Flight {n % 4 + 1}", herd.breed, bird.colour, str(bird.born),
            f"WBO-{bird.born.year % 100:02}-{n * 13 % 1000:03}", shows[n % len(shows)],
            "The children's pet" if n == 1 else ""]))
    write(folder / "birds.csv", lines)


def cattle(folder):
    """A spreadsheet's file: byte-order mark, quotes round each cell, more columns of its own than there is room for."""
    own = ["Milk Yield", "Fat %", "Protein %", "Calving Ease", "Birth Weight", "Weaning Weight", "Yearling Weight",
           "Polled", "A2 Tested", "Temperament", "Frame Score", "Body Condition", "Horn Status", "Herd Book",
           "Insurance", "Paddock", "Vet Certificate"]
    lines = [["Animal Name", "Tag", "Birth Date", "Sex", "Breed", "Color", "Bull", "Cow", "Awards", *own]]
    herd = herds.dairy_cattle()
    for beast in herd:
        n = beast.number
        bull, cow = (beast.father.name, beast.mother.name) if beast.father else ("", "")
        yields = ["", "", ""]
        if not beast.male:
            yields = [str(5100 + n * 37), f"{4.6 + n % 7 / 10:.1f}", f"{3.5 + n % 5 / 10:.1f}"]
        lines.append([
            beast.name, f"UK{n * 1117:06}", str(beast.born), "Bull" if beast.male else "Cow", herd.breed, beast.colour,
            bull, cow, "County Show 2022" if n % 8 == 5 else "", *yields, str(n % 3 + 1), str(24 + n % 6),
            str(130 + n * 2), str(240 + n * 3), "No" if n % 3 else "Yes", "A2/A2" if n % 2 else "A1/A2",
            "Quiet", str(3 + n % 4), f"{2.5 + n % 4 / 4}", "Dehorned" if n % 3 else "Polled", f"HB{n * 31:05}",
            "Yes" if n % 5 else "No", f"North {n % 4 + 1}", f"VC-{beast.born.year}-{n:02}"])
    quoted = [join([f'"{cell}"' for cell in line]) for line in lines]
    write(folder / "cattle.csv", quoted, "\r\n", mark="\ufeff")


def make_all(folder):
    for make in (dogs, rabbits, faulty_rabbits, birds, cattle):
        make(folder)
