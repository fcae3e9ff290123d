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
    <name>Velmora::Gui::SupportFormPage</name>
    <message>
        <source>FIELDS MUST CONTAIN CORRECT DATA</source>
        <translation>POLA MUSZĄ ZAWIERAĆ POPRAWNE DANE</translation>
    </message>
    <message>
        <source>SENDING REQUEST</source>
        <translation>WYSYŁANIE ZGŁOSZENIA</translation>
    </message>
    <message>
        <source>SUPPORT REQUEST SENT</source>
        <translation>ZGŁOSZENIE DO POMOCY TECHNICZNEJ WYSŁANE</translation>
    </message>
    <message>
        <source>SUPPORT REQUEST REJECTED</source>
        <translation>ZGŁOSZENIE DO POMOCY TECHNICZNEJ ODRZUCONE</translation>
    </message>
    <message>
        <source>UNABLE TO CONNECT TO SERVER</source>
        <translation>NIE MOŻNA POŁĄCZYĆ SIĘ Z SERWEREM</translation>
    </message>
    <message>
        <source>UNABLE TO COMPLETE OPERATION</source>
        <translation>NIE MOŻNA UKOŃCZYĆ OPERACJI</translation>
    </message>
    <message>
        <source>INVALID CAPTCHA</source>
        <translation>NIEPRAWIDŁOWY KOD CAPTCHA</translation>
    </message>
    <message>
        <source>CAPTCHA NOT AVAILABLE</source>
        <translation>KOD CAPTCHA NIEDOSTĘPNY</translation>
    </message>
    <message>
        <source>CHOOSE YOUR DRIVE</source>
        <translation>WYBIERZ DYSK</translation>
    </message>
    <message>
        <source>CONTACT FORM</source>
        <translation>FORMULARZ KONTAKTOWY</translation>
    </message>
    <message>
        <source>YOUR TEXT</source>
        <translation>TREŚĆ WIADOMOŚCI</translation>
    </message>
    <message>
        <source>YOUR SSD:</source>
        <translation>TWÓJ SSD:</translation>
    </message>
    <message>
        <source>YOUR EMAIL:</source>
        <translation>TWÓJ E-MAIL:</translation>
    </message>
    <message>
        <source>TYPE YOUR EMAIL</source>
        <translation>WPISZ SWÓJ ADRES E-MAIL</translation>
    </message>
    <message>
        <source>CAPTCHA:</source>
        <translation>CAPTCHA:</translation>
    </message>
    <message>
        <source>LOADING...</source>
        <translation>WCZYTYWANIE...</translation>
    </message>
    <message>
        <source>GENERATE</source>
        <translation>GENERUJ</translation>
    </message>
    <message>
        <source>TYPE CAPTCHA</source>
        <translation>WPISZ KOD CAPTCHA</translation>
    </message>
    <message>
        <source>BY SENDING THIS FORM YOU AGREE THAT BRANTEL PROCESSES THE DATA IT CARRIES: YOUR E-MAIL ADDRESS, YOUR MESSAGE, THE SERIAL NUMBER OF THE CHOSEN DRIVE AND THE VERSION OF THIS PROGRAM. THEY ARE USED ONLY TO ANSWER YOUR REQUEST, ARE NOT PASSED ON TO THIRD PARTIES AND ARE DELETED WHEN YOUR CASE IS CLOSED. YOU MAY ASK AT ANY TIME TO SEE, CORRECT OR DELETE THEM.</source>
        <translation>WYSYŁAJĄC TEN FORMULARZ, WYRAŻASZ ZGODĘ NA PRZETWARZANIE PRZEZ BRANTEL ZAWARTYCH W NIM DANYCH: TWOJEGO ADRESU E-MAIL, TWOJEJ WIADOMOŚCI, NUMERU SERYJNEGO WYBRANEGO DYSKU ORAZ WERSJI TEGO PROGRAMU. SĄ ONE WYKORZYSTYWANE WYŁĄCZNIE DO UDZIELENIA ODPOWIEDZI NA TWOJE ZGŁOSZENIE, NIE SĄ PRZEKAZYWANE OSOBOM TRZECIM I ZOSTAJĄ USUNIĘTE PO ZAMKNIĘCIU TWOJEJ SPRAWY. W KAŻDEJ CHWILI MOŻESZ POPROSIĆ O WGLĄD W TE DANE, ICH POPRAWIENIE LUB USUNIĘCIE.</translation>
    </message>
    <message>
        <source>SEND MESSAGE</source>
        <translation>WYŚLIJ WIADOMOŚĆ</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::AlertPage</name>
    <message>
        <source>DATA LOSS WARNING</source>
        <translation>OSTRZEŻENIE O UTRACIE DANYCH</translation>
    </message>
    <message>
        <source>WARNING:
THIS OPERATION WILL ARASE ALL DATA ON DESTINATION DISK.</source>
        <translation>OSTRZEŻENIE:
TA OPERACJA USUNIE WSZYSTKIE DANE Z DYSKU DOCELOWEGO.</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::ErrorPage</name>
    <message>
        <source>MIGRATION FAILED</source>
        <translation>MIGRACJA NIE POWIODŁA SIĘ</translation>
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
    <name>Velmora::Migration::FiltersPage</name>
    <message>
        <source>CHOOSE FILES TO MIGRATE</source>
        <translation>WYBIERZ PLIKI DO MIGRACJI</translation>
    </message>
    <message>
        <source>CALCULATE</source>
        <translation>OBLICZ</translation>
    </message>
    <message>
        <source>PLEASE WAIT FOR PARTITION SIZE ESTIMATION...</source>
        <translation>ZACZEKAJ NA OSZACOWANIE ROZMIARU PARTYCJI...</translation>
    </message>
    <message>
        <source>FILES AND FOLDERS</source>
        <translation>PLIKI I FOLDERY</translation>
    </message>
    <message>
        <source>FILE TYPES</source>
        <translation>TYPY PLIKÓW</translation>
    </message>
    <message>
        <source>DATA TO MIGRATE:</source>
        <translation>DANE DO MIGRACJI:</translation>
    </message>
    <message>
        <source>UNSELECT FILES AND FOLDERS YOU WANT TO SKIP DURING MIGRATION</source>
        <translation>ODZNACZ PLIKI I FOLDERY, KTÓRE CHCESZ POMINĄĆ PODCZAS MIGRACJI</translation>
    </message>
    <message>
        <source>UNSELECT FILE TYPES YOU WANT TO SKIP DURING MIGRATION</source>
        <translation>ODZNACZ TYPY PLIKÓW, KTÓRE CHCESZ POMINĄĆ PODCZAS MIGRACJI</translation>
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
        <source>DOCUMENTS</source>
        <translation>DOKUMENTY</translation>
    </message>
    <message>
        <source>PICTURES</source>
        <translation>OBRAZY</translation>
    </message>
    <message>
        <source>CALCULATING...</source>
        <translation>OBLICZANIE...</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::FinishPage</name>
    <message>
        <source>MIGRATION STATUS</source>
        <translation>STAN MIGRACJI</translation>
    </message>
    <message>
        <source>MIGRATION SUCCESFUL</source>
        <translation>MIGRACJA ZAKOŃCZONA POWODZENIEM</translation>
    </message>
    <message>
        <source>Velmora tool has successfully migrated your operating system, but the files and directories listed below failed to copy. Despite this your system should be operational.</source>
        <translation>Narzędzie Velmora pomyślnie przeniosło system operacyjny, ale nie udało się skopiować wymienionych poniżej plików i katalogów. Mimo to system powinien działać poprawnie.</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::InitPage</name>
    <message>
        <source>CHOOSE YOUR DRIVE</source>
        <translation>WYBIERZ DYSK</translation>
    </message>
    <message>
        <source>MIGRATE FROM</source>
        <translation>MIGRUJ Z</translation>
    </message>
    <message>
        <source>MIGRATE TO</source>
        <translation>MIGRUJ NA</translation>
    </message>
    <message>
        <source>DRIVE:</source>
        <translation>DYSK:</translation>
    </message>
    <message>
        <source>DRIVE STORAGE:</source>
        <translation>POJEMNOŚĆ DYSKU:</translation>
    </message>
    <message>
        <source>OCCUPIED SPACE:</source>
        <translation>ZAJĘTE MIEJSCE:</translation>
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
    <name>Velmora::Migration::MigrationWizard</name>
    <message>
        <source>CANCEL</source>
        <translation>ANULUJ</translation>
    </message>
    <message>
        <source>BACK</source>
        <translation>WSTECZ</translation>
    </message>
    <message>
        <source>NEXT</source>
        <translation>DALEJ</translation>
    </message>
    <message>
        <source>START</source>
        <translation>ROZPOCZNIJ</translation>
    </message>
    <message>
        <source>APPLY</source>
        <translation>ZASTOSUJ</translation>
    </message>
    <message>
        <source>HOME</source>
        <translation>STRONA GŁÓWNA</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::PageBase</name>
    <message>
        <source>STEP</source>
        <translation>KROK</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::PartitionDetailsWidget</name>
    <message>
        <source>EXCLUDE FILES...</source>
        <translation>WYKLUCZ PLIKI...</translation>
    </message>
    <message>
        <source>[NO LABEL]</source>
        <translation>[BEZ ETYKIETY]</translation>
    </message>
    <message>
        <source>UPDATING USED SIZE AFTER FILTERS APPLIED</source>
        <translation>AKTUALIZOWANIE ZAJĘTEGO MIEJSCA PO ZASTOSOWANIU FILTRÓW</translation>
    </message>
    <message>
        <source>DATA FITS BUT RECOMMENDED MINIMUM SIZE IS: %1</source>
        <translation>DANE SIĘ ZMIESZCZĄ, ALE ZALECANY MINIMALNY ROZMIAR TO: %1</translation>
    </message>
    <message>
        <source>DATA DOES NOT FIT TO PARTITION. INCREASE PARTITION SIZE OR FILTER DATA.</source>
        <translation>DANE NIE MIESZCZĄ SIĘ NA PARTYCJI. ZWIĘKSZ ROZMIAR PARTYCJI LUB ODFILTRUJ DANE.</translation>
    </message>
    <message>
        <source>RECOMMENDED SIZE: %1</source>
        <translation>ZALECANY ROZMIAR: %1</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::PartitionSizePage</name>
    <message>
        <source>PARTITIONS</source>
        <translation>PARTYCJE</translation>
    </message>
    <message>
        <source>Please wait for partition size estimation...</source>
        <translation>Zaczekaj na oszacowanie rozmiaru partycji...</translation>
    </message>
    <message>
        <source>SOURCE DRIVE</source>
        <translation>DYSK ŹRÓDŁOWY</translation>
    </message>
    <message>
        <source>PARTITIONS TO MIGRATE</source>
        <translation>PARTYCJE DO MIGRACJI</translation>
    </message>
    <message>
        <source>DESTINATION DRIVE</source>
        <translation>DYSK DOCELOWY</translation>
    </message>
    <message>
        <source>PARTITION</source>
        <translation>PARTYCJA</translation>
    </message>
    <message>
        <source>USED</source>
        <translation>ZAJĘTE</translation>
    </message>
    <message>
        <source>SIZE</source>
        <translation>ROZMIAR</translation>
    </message>
    <message>
        <source>EXCLUDE FILES</source>
        <translation>WYKLUCZ PLIKI</translation>
    </message>
</context>
<context>
    <name>Velmora::Migration::ProgressPage</name>
    <message>
        <source>MIGRATION STATUS</source>
        <translation>STAN MIGRACJI</translation>
    </message>
    <message>
        <source>MIGRATION IN PROGRESS</source>
        <translation>MIGRACJA W TOKU</translation>
    </message>
    <message>
        <source>REMOVING PARTITIONS...</source>
        <translation>USUWANIE PARTYCJI...</translation>
    </message>
    <message>
        <source>PREPARING NEW PARTITIONS...</source>
        <translation>PRZYGOTOWYWANIE NOWYCH PARTYCJI...</translation>
    </message>
    <message>
        <source>COPYING FILES... %1 / %2</source>
        <translation>KOPIOWANIE PLIKÓW... %1 / %2</translation>
    </message>
    <message>
        <source>CHANGING BOOT CONFIGURATION...</source>
        <translation>ZMIENIANIE KONFIGURACJI ROZRUCHU...</translation>
    </message>
</context>
<context>
    <name>Velmora::Settings::GeneralSettings</name>
    <message>
        <source>GENERAL</source>
        <translation>OGÓLNE</translation>
    </message>
</context>
<context>
    <name>Velmora::Settings::GeneralSettingsWidget</name>
    <message>
        <source>START ON SYSTEM STARTUP</source>
        <translation>URUCHAMIAJ PRZY STARCIE SYSTEMU</translation>
    </message>
    <message>
        <source>ENABLE AUTOMATIC UPDATES CHECK</source>
        <translation>WŁĄCZ AUTOMATYCZNE SPRAWDZANIE AKTUALIZACJI</translation>
    </message>
    <message>
        <source>LANGUAGE</source>
        <translation>JĘZYK</translation>
    </message>
    <message>
        <source>CHANGES WILL TAKE EFFECT AFTER AN APPLICATION RESTART</source>
        <translation>ZMIANY ZACZNĄ OBOWIĄZYWAĆ PO PONOWNYM URUCHOMIENIU PROGRAMU</translation>
    </message>
</context>
<context>
    <name>Velmora::Settings::SmartSettings</name>
    <message>
        <source>S.M.A.R.T.</source>
        <translation>S.M.A.R.T.</translation>
    </message>
    <message>
        <source>NONE</source>
        <translation>NIGDY</translation>
    </message>
    <message>
        <source>EVERY 5 MINUTES</source>
        <translation>CO 5 MINUT</translation>
    </message>
    <message>
        <source>EVERY 10 MINUTES</source>
        <translation>CO 10 MINUT</translation>
    </message>
    <message>
        <source>EVERY 15 MINUTES</source>
        <translation>CO 15 MINUT</translation>
    </message>
    <message>
        <source>EVERY 30 MINUTES</source>
        <translation>CO 30 MINUT</translation>
    </message>
    <message>
        <source>EVERY HOUR</source>
        <translation>CO GODZINĘ</translation>
    </message>
</context>
<context>
    <name>Velmora::Settings::SmartSettingsWidget</name>
    <message>
        <source>REFRESH S.M.A.R.T. AUTOMATICALLY</source>
        <translation>AUTOMATYCZNIE ODŚWIEŻAJ S.M.A.R.T.</translation>
    </message>
</context>
<context>
    <name>Velmora::Settings::UpdateSettings</name>
    <message>
        <source>UPDATE</source>
        <translation>AKTUALIZACJA</translation>
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
    <name>Velmora::System::DriveWidget</name>
    <message>
        <source>DRIVE %1 %2 %3 %4</source>
        <translation>DYSK %1 %2 %3 %4</translation>
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
<context>
    <name>Velmora::Update::UpdateSettingsWidget</name>
    <message>
        <source>APPLICATION VERSION:</source>
        <translation>WERSJA PROGRAMU:</translation>
    </message>
    <message>
        <source>AVAILABLE VERSION:</source>
        <translation>DOSTĘPNA WERSJA:</translation>
    </message>
    <message>
        <source>SPEED:</source>
        <translation>PRĘDKOŚĆ:</translation>
    </message>
    <message>
        <source>CHECK FOR UPDATES</source>
        <translation>SPRAWDŹ AKTUALIZACJE</translation>
    </message>
    <message>
        <source>ABOUT</source>
        <translation>O PROGRAMIE</translation>
    </message>
    <message>
        <source>%1 MB/s</source>
        <translation>%1 MB/s</translation>
    </message>
    <message>
        <source>NO UPDATES AVAILABLE</source>
        <translation>BRAK DOSTĘPNYCH AKTUALIZACJI</translation>
    </message>
    <message>
        <source>DATA NOT AVAILABLE</source>
        <translation>DANE NIEDOSTĘPNE</translation>
    </message>
    <message>
        <source>DOWNLOADING UPDATE</source>
        <translation>POBIERANIE AKTUALIZACJI</translation>
    </message>
    <message>
        <source>UPDATE FAILED, PLEASE RETRY</source>
        <translation>AKTUALIZACJA NIE POWIODŁA SIĘ, SPRÓBUJ PONOWNIE</translation>
    </message>
    <message>
        <source>COLLECTING DATA</source>
        <translation>ZBIERANIE DANYCH</translation>
    </message>
    <message>
        <source>RESTART UPDATE DOWNLOAD</source>
        <translation>POBIERZ AKTUALIZACJĘ PONOWNIE</translation>
    </message>
    <message>
        <source>UPDATE APPLICATION</source>
        <translation>ZAKTUALIZUJ PROGRAM</translation>
    </message>
</context>
</TS>
