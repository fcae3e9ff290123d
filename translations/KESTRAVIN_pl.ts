<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="pl" sourcelanguage="en">
<context>
    <name>Velmora::Application::Application</name>
    <message>
        <source>Show</source>
        <translation>Pokaż</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Zakończ</translation>
    </message>
</context>
<context>
    <name>Velmora::Application::ServiceManager</name>
    <message>
        <source>ERROR</source>
        <translation>BŁĄD</translation>
    </message>
    <message>
        <source>COULD NOT COMMUNICATE WITH SERVICE.</source>
        <translation>NIE MOŻNA POŁĄCZYĆ SIĘ Z USŁUGĄ.</translation>
    </message>
    <message>
        <source>ERROR PARSING APPVERSION, REINSTALL APPLICATION</source>
        <translation>BŁĄD ODCZYTU WERSJI PROGRAMU, ZAINSTALUJ PROGRAM PONOWNIE</translation>
    </message>
    <message>
        <source>SERVICE VERSION IS DIFFERENT THAN APPLICATION VERSION, REINSTALL APPLICATION</source>
        <translation>WERSJA USŁUGI RÓŻNI SIĘ OD WERSJI PROGRAMU, ZAINSTALUJ PROGRAM PONOWNIE</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::AboutWidget</name>
    <message>
        <source>Build date </source>
        <translation>Data kompilacji </translation>
    </message>
    <message>
        <source>COPYRIGHT © %1 BRANTEL. ALL RIGHTS RESERVED.</source>
        <translation>© %1 BRANTEL. WSZELKIE PRAWA ZASTRZEŻONE.</translation>
    </message>
    <message>
        <source>CLOSE</source>
        <translation>ZAMKNIJ</translation>
    </message>
    <message>
        <source>This program uses %1, licensed under</source>
        <translation>Ten program korzysta z %1 na licencji</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::AdWidget</name>
    <message>
        <source>CLOSE</source>
        <translation>ZAMKNIJ</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::DriveHealthInfoWidget</name>
    <message>
        <source>LESS THAN 10% OF FREE DISK SPACE LEFT.</source>
        <translation>NA DYSKU POZOSTAŁO MNIEJ NIŻ 10% WOLNEGO MIEJSCA.</translation>
    </message>
    <message>
        <source>LESS THAN 20% OF FREE DISK SPACE LEFT.</source>
        <translation>NA DYSKU POZOSTAŁO MNIEJ NIŻ 20% WOLNEGO MIEJSCA.</translation>
    </message>
    <message>
        <source>LESS THAN 10% OF REMAINING DISK LIFE LEFT.</source>
        <translation>POZOSTAŁO MNIEJ NIŻ 10% ŻYWOTNOŚCI DYSKU.</translation>
    </message>
    <message>
        <source>LESS THAN 70% OF REMAINING DISK LIFE LEFT.</source>
        <translation>POZOSTAŁO MNIEJ NIŻ 70% ŻYWOTNOŚCI DYSKU.</translation>
    </message>
    <message>
        <source>DRIVE CAN WORK BETTER IF CONNECTED TO FASTER SATA CONTROLLER.</source>
        <translation>DYSK MOŻE DZIAŁAĆ LEPIEJ PO PODŁĄCZENIU DO SZYBSZEGO KONTROLERA SATA.</translation>
    </message>
    <message>
        <source>FIRMWARE UPDATE AVAILABLE FOR DRIVE.</source>
        <translation>DOSTĘPNA JEST AKTUALIZACJA OPROGRAMOWANIA UKŁADOWEGO DYSKU.</translation>
    </message>
    <message>
        <source>DRIVE STATUS</source>
        <translation>STAN DYSKU</translation>
    </message>
    <message>
        <source>FREE SPACE</source>
        <translation>WOLNE MIEJSCE</translation>
    </message>
    <message>
        <source>LIFE REMAINING</source>
        <translation>POZOSTAŁA ŻYWOTNOŚĆ</translation>
    </message>
    <message>
        <source>BAD SECTORS</source>
        <translation>USZKODZONE SEKTORY</translation>
    </message>
    <message>
        <source>SATA SPEED</source>
        <translation>PRĘDKOŚĆ SATA</translation>
    </message>
    <message>
        <source>FIRMWARE UPDATE</source>
        <translation>AKTUALIZACJA OPROGRAMOWANIA UKŁADOWEGO</translation>
    </message>
    <message>
        <source>CLOSE</source>
        <translation>ZAMKNIJ</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::FirmwareUpdatePage</name>
    <message>
        <source>FIRMWARE UPDATE</source>
        <translation>AKTUALIZACJA OPROGRAMOWANIA UKŁADOWEGO</translation>
    </message>
    <message>
        <source>SSD MODEL:</source>
        <translation>MODEL SSD:</translation>
    </message>
    <message>
        <source>FIRMWARE VERSION:</source>
        <translation>WERSJA OPROGRAMOWANIA UKŁADOWEGO:</translation>
    </message>
    <message>
        <source>AVAILABLE UPDATES:</source>
        <translation>DOSTĘPNE AKTUALIZACJE:</translation>
    </message>
    <message>
        <source>ANALYZED:</source>
        <translation>PRZEANALIZOWANO:</translation>
    </message>
    <message>
        <source>CHECK FOR UPDATES</source>
        <translation>SPRAWDŹ AKTUALIZACJE</translation>
    </message>
    <message>
        <source>UPDATE FIRMWARE</source>
        <translation>ZAKTUALIZUJ OPROGRAMOWANIE UKŁADOWE</translation>
    </message>
    <message>
        <source>NO AVAILABLE UPDATES</source>
        <translation>BRAK DOSTĘPNYCH AKTUALIZACJI</translation>
    </message>
    <message>
        <source>NO DATA</source>
        <translation>BRAK DANYCH</translation>
    </message>
    <message>
        <source>NOT AVAILABLE</source>
        <translation>NIEDOSTĘPNE</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::HomePage</name>
    <message>
        <source>CHOOSE YOUR DRIVE</source>
        <translation>WYBIERZ DYSK</translation>
    </message>
    <message>
        <source>WELCOME</source>
        <translation>WITAMY</translation>
    </message>
    <message>
        <source>SELECT THE DRIVE YOU WANT TO LOOK AFTER.</source>
        <translation>WYBIERZ DYSK, KTÓRY CHCESZ MONITOROWAĆ.</translation>
    </message>
    <message>
        <source>SEARCHING FOR DRIVES...</source>
        <translation>WYSZUKIWANIE DYSKÓW...</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::MainWindow</name>
    <message>
        <source>KESTRAVIN SSD</source>
        <translation>KESTRAVIN SSD</translation>
    </message>
    <message>
        <source>UPDATE AVAILABLE</source>
        <translation>DOSTĘPNA AKTUALIZACJA</translation>
    </message>
    <message>
        <source>APPLICATION UPDATE AVAILABLE</source>
        <translation>DOSTĘPNA AKTUALIZACJA PROGRAMU</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::MenuBar</name>
    <message>
        <source>SSD MANAGEMENT</source>
        <translation>ZARZĄDZANIE SSD</translation>
    </message>
    <message>
        <source>ADDITIONAL FEATURES</source>
        <translation>DODATKOWE FUNKCJE</translation>
    </message>
    <message>
        <source>DATA MIGRATION</source>
        <translation>MIGRACJA DANYCH</translation>
    </message>
    <message>
        <source>TECHNICAL SUPPORT</source>
        <translation>POMOC TECHNICZNA</translation>
    </message>
    <message>
        <source>SETTINGS</source>
        <translation>USTAWIENIA</translation>
    </message>
    <message>
        <source>MY SSD</source>
        <translation>MÓJ SSD</translation>
    </message>
    <message>
        <source>SMART PARAMETERS</source>
        <translation>PARAMETRY SMART</translation>
    </message>
    <message>
        <source>PERFORMANCE TEST</source>
        <translation>TEST WYDAJNOŚCI</translation>
    </message>
    <message>
        <source>FIRMWARE UPDATE</source>
        <translation>AKTUALIZACJA OPROGRAMOWANIA UKŁADOWEGO</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::PerformanceCheckPage</name>
    <message>
        <source>%1 MB/s</source>
        <translation>%1 MB/s</translation>
    </message>
    <message>
        <source>PERFORMANCE CHECK</source>
        <translation>SPRAWDZANIE WYDAJNOŚCI</translation>
    </message>
    <message>
        <source>ELAPSED</source>
        <translation>UPŁYNĘŁO</translation>
    </message>
    <message>
        <source>REMAINING</source>
        <translation>POZOSTAŁO</translation>
    </message>
    <message>
        <source>WRITE:</source>
        <translation>ZAPIS:</translation>
    </message>
    <message>
        <source>READ:</source>
        <translation>ODCZYT:</translation>
    </message>
    <message>
        <source>0  MB/s</source>
        <translation>0 MB/s</translation>
    </message>
    <message>
        <source>0 MB/s</source>
        <translation>0 MB/s</translation>
    </message>
    <message>
        <source>TEST DETAILS: TEST PERFORMS CONTINIOUS WRITE AND READ OF 4MB BLOCKS</source>
        <translation>SZCZEGÓŁY TESTU: TEST WYKONUJE CIĄGŁY ZAPIS I ODCZYT BLOKÓW 4 MB</translation>
    </message>
    <message>
        <source>START</source>
        <translation>ROZPOCZNIJ</translation>
    </message>
    <message>
        <source>%1%</source>
        <translation>%1%</translation>
    </message>
    <message>
        <source>RUNNING</source>
        <translation>W TOKU</translation>
    </message>
    <message>
        <source>CANCEL</source>
        <translation>ANULUJ</translation>
    </message>
    <message>
        <source>TEST FINISHED</source>
        <translation>TEST ZAKOŃCZONY</translation>
    </message>
    <message>
        <source>TEST CANCELED</source>
        <translation>TEST ANULOWANY</translation>
    </message>
    <message>
        <source>TEST FAILED</source>
        <translation>TEST NIE POWIÓDŁ SIĘ</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::SSDStatusPage</name>
    <message>
        <source>0.00 BYTES</source>
        <translation>0.00 BAJTÓW</translation>
    </message>
    <message>
        <source>NO DATA</source>
        <translation>BRAK DANYCH</translation>
    </message>
    <message>
        <source>ANALYZED: </source>
        <translation>PRZEANALIZOWANO: </translation>
    </message>
    <message>
        <source>MY SSD</source>
        <translation>MÓJ SSD</translation>
    </message>
    <message>
        <source>SSD MODEL:</source>
        <translation>MODEL SSD:</translation>
    </message>
    <message>
        <source>CAPACITY:</source>
        <translation>POJEMNOŚĆ:</translation>
    </message>
    <message>
        <source>SERIAL NUMBER:</source>
        <translation>NUMER SERYJNY:</translation>
    </message>
    <message>
        <source>FIRMWARE:</source>
        <translation>OPROGRAMOWANIE UKŁADOWE:</translation>
    </message>
    <message>
        <source>DRIVE STATUS:</source>
        <translation>STAN DYSKU:</translation>
    </message>
    <message>
        <source>ACTION NEEDED</source>
        <translation>WYMAGANE DZIAŁANIE</translation>
    </message>
    <message>
        <source>DETAILS</source>
        <translation>SZCZEGÓŁY</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>GOOD</source>
        <translation>DOBRY</translation>
    </message>
    <message>
        <source>FIRMWARE STATUS:</source>
        <translation>STAN OPROGRAMOWANIA UKŁADOWEGO:</translation>
    </message>
    <message>
        <source>UPDATE AVAILABLE</source>
        <translation>DOSTĘPNA AKTUALIZACJA</translation>
    </message>
    <message>
        <source>UP TO DATE</source>
        <translation>AKTUALNE</translation>
    </message>
    <message>
        <source>TRIM SUPPORT:</source>
        <translation>OBSŁUGA TRIM:</translation>
    </message>
    <message>
        <source>AHCI SUPPORT:</source>
        <translation>OBSŁUGA AHCI:</translation>
    </message>
    <message>
        <source>TOTAL STORAGE:</source>
        <translation>CAŁKOWITA POJEMNOŚĆ:</translation>
    </message>
    <message>
        <source>USED STORAGE:</source>
        <translation>ZAJĘTE MIEJSCE:</translation>
    </message>
    <message>
        <source>FREE STORAGE:</source>
        <translation>WOLNE MIEJSCE:</translation>
    </message>
    <message>
        <source>ANALYZED:</source>
        <translation>PRZEANALIZOWANO:</translation>
    </message>
    <message>
        <source>RELOAD</source>
        <translation>ODŚWIEŻ</translation>
    </message>
    <message>
        <source>YES</source>
        <translation>TAK</translation>
    </message>
    <message>
        <source>NO</source>
        <translation>NIE</translation>
    </message>
</context>
<context>
    <name>Velmora::Gui::SmartParametersPage</name>
    <message>
        <source>NOT SUPPORTED</source>
        <translation>NIEOBSŁUGIWANE</translation>
    </message>
    <message>
        <source>SMART PARAMETERS</source>
        <translation>PARAMETRY SMART</translation>
    </message>
    <message>
        <source>LIFE REMAINING:</source>
        <translation>POZOSTAŁA ŻYWOTNOŚĆ:</translation>
    </message>
    <message>
        <source>TEMPERATURE:</source>
        <translation>TEMPERATURA:</translation>
    </message>
    <message>
        <source>POWER-ON HOURS</source>
        <translation>GODZINY PRACY</translation>
    </message>
    <message>
        <source>POWER CYCLES</source>
        <translation>CYKLE ZASILANIA</translation>
    </message>
    <message>
        <source>AVG ERASE COUNT</source>
        <translation>ŚR. LICZBA KASOWAŃ</translation>
    </message>
    <message>
        <source>MAX ERASE COUNT</source>
        <translation>MAKS. LICZBA KASOWAŃ</translation>
    </message>
    <message>
        <source>GB WRITTEN</source>
        <translation>ZAPISANE GB</translation>
    </message>
    <message>
        <source>%1%</source>
        <translation>%1%</translation>
    </message>
    <message>
        <source>%1 °C</source>
        <translation>%1 °C</translation>
    </message>
    <message>
        <source>%1 GB</source>
        <translation>%1 GB</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::FileSystemFilter</name>
    <message>
        <source>LOADING...</source>
        <translation>WCZYTYWANIE...</translation>
    </message>
    <message>
        <source>PATH</source>
        <translation>ŚCIEŻKA</translation>
    </message>
    <message>
        <source>SIZE</source>
        <translation>ROZMIAR</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::Migration</name>
    <message>
        <source>INVALID STATE</source>
        <translation>NIEPRAWIDŁOWY STAN</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::MigrationController</name>
    <message>
        <source>MIGRATION WAS CANCELED</source>
        <translation>MIGRACJA ZOSTAŁA ANULOWANA</translation>
    </message>
    <message>
        <source>FAILED TO CLEAN DISK ON DESTINATION DRIVE.</source>
        <translation>NIE UDAŁO SIĘ WYCZYŚCIĆ DYSKU DOCELOWEGO.</translation>
    </message>
    <message>
        <source>FAILED TO CREATE PARTITION ON DESTINATION DRIVE (%1).</source>
        <translation>NIE UDAŁO SIĘ UTWORZYĆ PARTYCJI NA DYSKU DOCELOWYM (%1).</translation>
    </message>
    <message>
        <source>FAILED TO FORMAT PARTITION ON DESTINATION DRIVE (%1).</source>
        <translation>NIE UDAŁO SIĘ SFORMATOWAĆ PARTYCJI NA DYSKU DOCELOWYM (%1).</translation>
    </message>
    <message>
        <source>FAILED TO COPY FILES (%1).</source>
        <translation>NIE UDAŁO SIĘ SKOPIOWAĆ PLIKÓW (%1).</translation>
    </message>
    <message>
        <source>FAILED TO CONFIGURE BOOT OPTIONS (%1).</source>
        <translation>NIE UDAŁO SIĘ SKONFIGUROWAĆ OPCJI ROZRUCHU (%1).</translation>
    </message>
    <message>
        <source>SERVICE IS NOT RESPONSIVE.</source>
        <translation>USŁUGA NIE ODPOWIADA.</translation>
    </message>
</context>
<context>
    <name>Velmora::System::Drive</name>
    <message>
        <source>LOW FREE SPACE ON DRIVE %1.</source>
        <translation>MAŁO WOLNEGO MIEJSCA NA DYSKU %1.</translation>
    </message>
    <message>
        <source>LOW LIFE REMAINING ON DRIVE %1.</source>
        <translation>NISKA POZOSTAŁA ŻYWOTNOŚĆ DYSKU %1.</translation>
    </message>
    <message>
        <source>BAD SECTORS ON DRIVE %1.</source>
        <translation>USZKODZONE SEKTORY NA DYSKU %1.</translation>
    </message>
    <message>
        <source>DRIVE %1 COULD WORK FASTER.</source>
        <translation>DYSK %1 MÓGŁBY DZIAŁAĆ SZYBCIEJ.</translation>
    </message>
</context>
<context>
    <name>Velmora::System::FileCategories</name>
    <message>
        <source>SYSTEM</source>
        <translation>SYSTEM</translation>
    </message>
    <message>
        <source>PROGRAMS</source>
        <translation>PROGRAMY</translation>
    </message>
    <message>
        <source>DOCUMENTS</source>
        <translation>DOKUMENTY</translation>
    </message>
    <message>
        <source>VIDEO</source>
        <translation>WIDEO</translation>
    </message>
    <message>
        <source>SOUND</source>
        <translation>AUDIO</translation>
    </message>
    <message>
        <source>PICTURES</source>
        <translation>OBRAZY</translation>
    </message>
    <message>
        <source>OTHER</source>
        <translation>INNE</translation>
    </message>
</context>
</TS>
