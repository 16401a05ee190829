<?php
// The common list over PHP's PDO_ODBC: argument 1 is the connection string.

function same($got, $wanted, string $what): void
{
    if ($got === $wanted) {
        return;
    }
    fwrite(STDERR, sprintf("%s: got %.200s and wanted %.200s\n", $what, var_export($got, true), var_export($wanted, true)));
    exit(1);
}

function refused(callable $call, string $state, string $what): void
{
    try {
        $call();
    } catch (PDOException $error) {
        same($error->errorInfo[0], $state, $what);
        return;
    }
    same('accepted', 'refused', $what);
}

$columns = ['name', 'notes', 'tame', 'legs', 'cage', 'tag', 'price', 'ratio', 'weight', 'born', 'chip', 'photo', 'mark',
    'amount'];
$names = ['Снежок', 'Ωmega', '兎', 'Paw 🐾', 'Việt', "O'Brien", str_repeat('a', 127), str_repeat('b', 128)];
$notes = str_repeat('Fell: glänzend, 🐹. ', 1053);
$row = fn(string $name): array => [$name, $notes, '1', '200', '-300', '70000', '-12.5000', '0.5', '1321.9',
    '2020-02-29 10:20:30', "\x00\x01\xFE\xFF", str_repeat('picture', 1000), '01234567-89AB-CDEF-0123-456789ABCDEF',
    '12345678901234.5678'];

$db = new PDO('odbc:' . $argv[1], '', '', [PDO::ATTR_ERRMODE => PDO::ERRMODE_EXCEPTION]);
$db->beginTransaction();
$insert = $db->prepare(sprintf('INSERT INTO everything (%s) VALUES (%s)', implode(',', $columns),
    implode(',', array_fill(0, count($columns), '?'))));
foreach ($names as $name) {
    foreach ($row($name) as $i => $value) {
        $insert->bindValue($i + 1, $value, in_array($columns[$i], ['chip', 'photo']) ? PDO::PARAM_LOB : PDO::PARAM_STR);
    }
    $insert->execute();
    same($insert->rowCount(), 1, 'rows inserted');
}
$insert->execute(array_map(fn($column) => $column === 'tame' ? '0' : null, $columns));
$db->commit();

$number = 0;
foreach ($db->query('SELECT ' . implode(',', $columns) . ' FROM everything', PDO::FETCH_NUM) as $got) {
    $wanted = $number < count($names) ? $row($names[$number]) : array_map(fn($c) => $c === 'tame' ? '0' : null, $columns);
    foreach ($columns as $i => $column) {
        // PDO reads bytes as text, which is their hexadecimal digits.
        if (in_array($column, ['chip', 'photo']) && $wanted[$i] !== null) {
            $wanted[$i] = strtoupper(bin2hex($wanted[$i]));
        }
        same($got[$i], $wanted[$i], sprintf('%s of row %d', $column, $number + 1));
    }
    ++$number;
}
same($number, count($names) + 1, 'number of rows');

$search = $db->prepare('SELECT id FROM everything WHERE name = ? AND born = ?');
$search->execute(['paw 🐾', '2020-02-29 10:20:30']);
same($search->fetchColumn(), '4', 'search for a name');

$scroll = $db->prepare('SELECT id FROM everything', [PDO::ATTR_CURSOR => PDO::CURSOR_SCROLL]);
$scroll->execute();
same($scroll->fetch(PDO::FETCH_NUM, PDO::FETCH_ORI_LAST)[0], '9', 'the last row');
same($scroll->fetch(PDO::FETCH_NUM, PDO::FETCH_ORI_ABS, 3)[0], '3', 'the third row');
$scroll->closeCursor();

$db->beginTransaction();
same($db->exec("UPDATE everything SET name = 'gone' WHERE id = 1"), 1, 'rows changed');
$db->rollBack();
same($db->query('SELECT name FROM everything WHERE id = 1')->fetchColumn(), $names[0], 'after a rollback');
same($db->exec("UPDATE everything SET name = 'gone' WHERE id = 99"), 0, 'rows changed where there are none');

refused(fn() => $db->query('SELECT * FROM nowhere'), '42S02', 'a table that is not there');
refused(fn() => $db->exec('INSERT INTO everything (legs) VALUES (256)'), '22003', 'a number out of range');
refused(fn() => $db->exec('INSERT INTO everything (id) VALUES (1)'), '23000', 'a key that is there');

// The older functions of the same extension, for the lists that PDO does not have.
$list = odbc_connect($argv[1], '', '');
$tables = odbc_tables($list);
same(odbc_fetch_array($tables)['TABLE_NAME'], 'everything', 'tables');
$described = odbc_columns($list, '', '', 'everything', '%');
$found = [];
while ($column = odbc_fetch_array($described)) {
    $found[] = $column['COLUMN_NAME'];
}
same($found, ['id', ...$columns], 'columns');
$keys = odbc_primarykeys($list, '', '', 'everything');
same(odbc_fetch_array($keys)['COLUMN_NAME'], 'id', 'primary key');
$references = odbc_foreignkeys($list, '', '', '', '', '', 'everything');
same(array_slice(odbc_fetch_array($references), 7, 5), ['FKCOLUMN_NAME' => 'tag', 'KEY_SEQ' => '1', 'UPDATE_RULE' => '3',
    'DELETE_RULE' => '3', 'FK_NAME' => 'Parents'], 'foreign keys');
echo "PHP: all as it should be\n";
