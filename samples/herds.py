"""The animals of the samples: small herds of four generations."""
import datetime
from dataclasses import dataclass
from typing import Optional


@dataclass
class Animal:
    """One animal; its number is its place in the herd, and its parents always stand before it."""

    number: int
    name: str
    male: bool
    born: datetime.date
    colour: str
    prefix: str
    father: Optional["Animal"] = None
    mother: Optional["Animal"] = None

    @property
    def full_name(self):
        return f"{self.prefix} {self.name}".strip()


class Herd:
    """A herd of one breed, built up litter by litter. A young one is written as its name and a letter, m or f."""

    def __init__(self, breed, home=""):
        self.breed = breed
        self.home = home  # the prefix of all that are born here
        self.animals = []

    def founder(self, young, born, colour, prefix=""):
        self._add(young, born, colour, prefix, None, None)

    def litter(self, father, mother, born, *young):
        sire, dam = self[father], self[mother]
        assert sire.male and not dam.male, f"{father} x {mother}"
        for place, one in enumerate(young):  # they take after their father and their mother in turn
            self._add(one, born, (sire, dam)[place % 2].colour, self.home, sire, dam)

    def check_names(self):
        """Parents are linked by a search for their name in all full names, so none may lie within another one."""
        for one in self:
            for other in self:
                clash = one is not other and one.full_name.lower() in other.full_name.lower()
                assert not clash, f"{one.full_name} lies within {other.full_name}"
        return self

    def _add(self, young, born, colour, prefix, father, mother):
        name, letter = young.rsplit(" ", 1)
        assert letter in "mf", young
        day = datetime.date.fromisoformat(born)
        self.animals.append(Animal(len(self.animals) + 1, name, letter == "m", day, colour, prefix, father, mother))

    def __getitem__(self, name):
        return next(animal for animal in self.animals if animal.name == name)

    def __iter__(self):
        return iter(self.animals)

    def __len__(self):
        return len(self.animals)


def border_collies():
    herd = Herd("Border Collie", home="Windrush")
    herd.founder("Bracken m", "2014-03-10", "Black & White", "Glenmore")
    herd.founder("Nell f", "2014-04-22", "Red & White", "Glenmore")
    herd.founder("Captain O'Malley m", "2014-05-11", "Blue Merle", "Skerryvore")
    herd.founder("Zoë's Dream f", "2014-11-02", "Tricolour", "Skerryvore")
    herd.founder("Déjà Vu m", "2015-02-12", "Black & White", "Château Brume")
    herd.founder("Sélène f", "2015-02-12", "Blue Merle", "Château Brume")
    herd.founder("Roving Piper m", "2015-06-13", "Red & White", "Fallowfield")
    herd.founder("Meg f", "2015-07-25", "Black & White", "Fallowfield")
    herd.litter("Bracken", "Zoë's Dream", "2017-03-14", "Moss m", "Fern f", "Storm Petrel m", "Isla f")
    herd.litter("Captain O'Malley", "Nell", "2017-05-02", "Heather Mist f", "Tam o' Shanter m", "Molly Malone f",
                "Ben Vorlich m")
    herd.litter("Déjà Vu", "Meg", "2018-02-20", "Flint m", "Tansy f", "Jura m")
    herd.litter("Roving Piper", "Sélène", "2018-04-09", "Wren f", "Corrie m", "Bonnie f")
    herd.litter("Moss", "Heather Mist", "2020-01-30", "Sir Toby m", "Skye Lark f", "Drummer Boy m", "Juno f")
    herd.litter("Flint", "Wren", "2020-06-11", "Peg o' My Heart f", "Hazard m", "Rowan f")
    herd.litter("Sir Toby", "Peg o' My Heart", "2023-04-17", "Quill m", "Thistle f", "Ranger m", "Velvet f", "Whin f")
    return herd.check_names()


def mini_lops():
    herd = Herd("Mini Lop")
    herd.founder("Barnaby m", "2020-02-05", "Agouti")
    herd.founder("Clover f", "2020-03-15", "Chinchilla")
    herd.founder("Thumper m", "2020-03-06", "Sooty Fawn")
    herd.founder("Daisy O'Grady f", "2020-04-16", "Blue")
    herd.founder("Monsieur Café m", "2020-04-07", "Opal")
    herd.founder("Lavender f", "2020-05-17", "Agouti")
    herd.litter("Barnaby", "Daisy O'Grady", "2021-03-19", "Biscuit m", "Bluebell f", "Oliver Twist m", "Queenie f")
    herd.litter("Thumper", "Clover", "2021-04-02", "Marigold f", "Sultan m", "Saffron f", "Hickory m")
    herd.litter("Monsieur Café", "Lavender", "2021-05-27", "Pépin m", "Tiptoe f", "Hyacinth f")
    herd.litter("Biscuit", "Marigold", "2022-03-08", "Gulliver m", "Pippa f", "Rumpus m", "Zinnia f")
    herd.litter("Sultan", "Tiptoe", "2022-06-14", "Amélie f", "Domino m", "Juniper f")
    herd.litter("Gulliver", "Amélie", "2023-04-21", "Teasel m", "Sorrel f", "Merlin m", "Nutmeg f")
    return herd.check_names()


def budgerigars():
    herd = Herd("English Budgerigar")
    herd.founder("Old Pip m", "2016-05-01", "Sky Blue")  # a pet: as a parent's id, 1 would mean "no parent"
    herd.founder("Admiral m", "2019-02-11", "Light Green")
    herd.founder("Primrose f", "2019-03-21", "Lutino")
    herd.founder("Skylark m", "2019-03-12", "Grey")
    herd.founder("Duchess f", "2019-04-22", "Violet")
    herd.founder("Céladon m", "2019-04-13", "Light Green")
    herd.founder("Marina f", "2019-05-23", "Sky Blue")
    herd.litter("Admiral", "Duchess", "2020-04-18", "Rory O'Dell m", "Lemon Ice f", "Jasper m", "Tilly f")
    herd.litter("Skylark", "Primrose", "2020-05-06", "Pepperpot m", "Vera Lynn f", "Sunny Jim m", "Opaline f")
    herd.litter("Céladon", "Marina", "2020-06-23", "Figaro m", "Snowdrop f", "Jade f")
    herd.litter("Rory O'Dell", "Vera Lynn", "2021-04-11", "Mistral m", "Peach Melba f", "Cobalt m", "Ondine f")
    herd.litter("Pepperpot", "Snowdrop", "2021-05-30", "Topaz m", "Kitty f", "Banjo m")
    herd.litter("Mistral", "Kitty", "2022-05-15", "Indigo m", "Harmony f", "Zéphyr m")
    return herd.check_names()


def dairy_cattle():
    herd = Herd("Jersey")
    herd.founder("Hector m", "2014-02-11", "Mulberry")
    herd.founder("Buttercup f", "2015-01-20", "Fawn")
    herd.founder("Sweet Violet f", "2015-02-21", "Dark Fawn")
    herd.founder("Madame Curie f", "2015-03-22", "Fawn")
    herd.founder("Brigadier m", "2015-09-09", "Dark Fawn")
    herd.litter("Hector", "Buttercup", "2018-02-14", "Primula f", "Northern Star m")
    herd.litter("Hector", "Sweet Violet", "2018-03-01", "Ellie May f", "Ajax m")
    herd.litter("Brigadier", "Madame Curie", "2018-03-22", "Bosun m", "Bramble f")
    herd.litter("Brigadier", "Buttercup", "2019-02-27", "Ribbon f")
    herd.litter("Bosun", "Primula", "2021-03-03", "Glória f", "Cromwell m")
    herd.litter("Bosun", "Ellie May", "2021-04-12", "Honeysuckle f")
    herd.litter("Ajax", "Bramble", "2021-04-30", "Duke Ellington m", "Poppy f")
    herd.litter("Bosun", "Ribbon", "2022-02-19", "Everest m", "Comfrey f")
    herd.litter("Cromwell", "Honeysuckle", "2023-05-06", "Falstaff m", "Tulip f")
    return herd.check_names()


def siamese_cats():
    herd = Herd("Siamese", home="Moonstone")
    herd.founder("Prince Igor m", "2016-02-10", "Seal Point", "Bangkok")
    herd.founder("Lotus f", "2016-05-20", "Blue Point", "Bangkok")
    herd.founder("Sapphire m", "2016-03-11", "Blue Point", "Silverpaw")
    herd.founder("Mei Li f", "2016-06-21", "Seal Point", "Silverpaw")
    herd.founder("Tom O'Shea m", "2016-04-12", "Lilac Point", "Belle Étoile")
    herd.founder("Cléopâtre f", "2016-07-22", "Chocolate Point", "Belle Étoile")
    herd.litter("Prince Igor", "Mei Li", "2018-05-08", "Rajah m", "Orchid f", "Bamboo m", "Willow f")
    herd.litter("Sapphire", "Lotus", "2018-07-19", "Jezebel f", "Éclair m", "Saffi f")
    herd.litter("Tom O'Shea", "Cléopâtre", "2019-03-25", "Mozart m", "Tamarind f", "Phantom m")
    herd.litter("Rajah", "Jezebel", "2021-04-14", "Isolde f", "Silk Road m", "Pearl f", "Ming m")
    herd.litter("Mozart", "Orchid", "2022-06-02", "Crystal f", "Oracle m", "Yasmin f")
    herd.litter("Silk Road", "Crystal", "2024-05-20", "Nimbus m", "Opal f", "Tao m")
    return herd.check_names()
