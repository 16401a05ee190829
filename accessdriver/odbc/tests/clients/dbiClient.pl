# The common list over Perl's DBD::ODBC: argument 1 is the connection string.

use strict;
use warnings;
use DBI qw(:sql_types);

sub same {
    my ($got, $wanted, $what) = @_;
    my ($g, $w) = map { defined $_ ? $_ : 'Null' } $got, $wanted;
    return if $g eq $w;
    die sprintf "%s: got %.200s and wanted %.200s\n", $what, $g, $w;
}

sub refused {
    my ($call, $state, $what) = @_;
    die "$what was not refused\n" if eval { $call->(); 1 };
    same($DBI::state, $state, $what);
}

my @columns = qw(name notes tame legs cage tag price ratio weight born chip photo mark amount);
my @names = ('Снежок', 'Ωmega', '兎', 'Paw 🐾', 'Việt', "O'Brien", 'a' x 127, 'b' x 128);
my $notes = 'Fell: glänzend, 🐹. ' x 1053;
my %binary = (chip => SQL_VARBINARY, photo => SQL_LONGVARBINARY);

sub row {
    return (shift, $notes, 1, 200, -300, 70000, '-12.5000', '0.5', '1321.9', '2020-02-29 10:20:30',
        "\x00\x01\xFE\xFF", 'picture' x 1000, '01234567-89AB-CDEF-0123-456789ABCDEF', '12345678901234.5678');
}

my $db = DBI->connect("dbi:ODBC:$ARGV[0]", '', '',
    {RaiseError => 1, PrintError => 0, AutoCommit => 0, LongReadLen => 100_000});
same(join(',', map { /(\w+)\W*$/ } $db->tables('', '', '%', 'TABLE')), 'everything', 'tables');
my $described = $db->column_info(undef, undef, 'everything', '%')->fetchall_arrayref({});
same(join(',', map { $_->{COLUMN_NAME} } @$described), join(',', 'id', @columns), 'columns');
same(join(',', $db->primary_key(undef, undef, 'everything')), 'id', 'primary key');
my $keys = $db->foreign_key_info(undef, undef, 'everything', undef, undef, undef)->fetchall_arrayref;
same(join('|', map { join ',', @$_[3, 7, 11] } @$keys), 'id,tag,Parents', 'foreign keys');

my $insert = $db->prepare('INSERT INTO everything (' . join(',', @columns) . ') VALUES (' . join(',', ('?') x @columns) . ')');
for my $name (@names) {
    my @row = row($name);
    for my $i (0 .. $#row) {
        my $type = $binary{$columns[$i]};
        $type ? $insert->bind_param($i + 1, $row[$i], $type) : $insert->bind_param($i + 1, $row[$i]);
    }
    same($insert->execute, 1, 'rows inserted');
}
$insert->execute(map { $_ eq 'tame' ? 0 : undef } @columns);
$db->commit;

my $rows = $db->selectall_arrayref('SELECT ' . join(',', @columns) . ' FROM everything');
same(scalar @$rows, @names + 1, 'number of rows');
for my $number (0 .. $#$rows) {
    my @wanted = $number < @names ? row($names[$number]) : map { $_ eq 'tame' ? 0 : undef } @columns;
    same($rows->[$number][$_], $wanted[$_], "$columns[$_] of row " . ($number + 1)) for 0 .. $#columns;
}
same($db->selectrow_array('SELECT id FROM everything WHERE name = ?', undef, 'paw 🐾'), 4, 'search for a name');

same($db->do("UPDATE everything SET name = 'gone' WHERE id = 1"), 1, 'rows changed');
$db->rollback;
same($db->selectrow_array('SELECT name FROM everything WHERE id = 1'), $names[0], 'after a rollback');
same($db->do("UPDATE everything SET name = 'gone' WHERE id = 99") + 0, 0, 'rows changed where there are none');

refused(sub { $db->do('SELECT * FROM nowhere') }, '42S02', 'a table that is not there');
refused(sub { $db->do('INSERT INTO everything (legs) VALUES (256)') }, '22003', 'a number out of range');
refused(sub { $db->do('INSERT INTO everything (id) VALUES (1)') }, '23000', 'a key that is there');
$db->disconnect;
print "Perl: all as it should be\n";
